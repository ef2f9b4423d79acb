# The two commands a newcomer needs: `make test` and `make demo`.
# Everything else goes through CMake presets (CMakePresets.json).

JOBS ?= $(shell nproc 2>/dev/null || sysctl -n hw.ncpu 2>/dev/null || echo 2)
FUZZ_SECONDS ?= 60

.PHONY: test demo app fuzz bench samples format clean

## Build everything with AddressSanitizer and UndefinedBehaviorSanitizer and run every test.
test:
	@scripts/install-deps.sh test
	@mkdir -p build
	@cmake --preset dev > build/configure-dev.log 2>&1 || (cat build/configure-dev.log; exit 1)
	@cmake --build --preset dev -j $(JOBS)
	@ctest --preset dev

## Build the release tool and show the main job on the bundled sample monitors.
demo:
	@scripts/install-deps.sh demo
	@cmake --preset release > /dev/null
	@cmake --build --preset release -j $(JOBS) --target halvora
	@scripts/demo.sh build/release/tools/halvora/halvora

## Build "Halvora Pro.app" (macOS only): build/app/HalvoraPro/macos/Halvora Pro.app.
## SPARKLE_DIR: a folder holding Sparkle.framework (without it, updates are off).
app:
	@if [ "$$(uname -s)" != Darwin ]; then echo "make app builds the macOS application: run it on a Mac" >&2; exit 2; fi
	@scripts/install-deps.sh app
	@mkdir -p build
	@cmake --preset app -DHALVORA_SPARKLE_FRAMEWORK_DIR="$(SPARKLE_DIR)" > build/configure-app.log 2>&1 || (cat build/configure-app.log; exit 1)
	@cmake --build --preset app -j $(JOBS)
	@echo "Built build/app/HalvoraPro/macos/Halvora Pro.app"

## Fuzz the EDID model, the settings decoder, the rig reader and the simulator's
## command parser for FUZZ_SECONDS each (clang's libFuzzer, ASan and UBSan),
## seeded with real files. FUZZ_TARGETS picks some of them (edid settings rig command).
fuzz:
	@scripts/install-deps.sh fuzz
	@cmake --preset fuzz > /dev/null
	@cmake --build --preset fuzz -j $(JOBS)
	@scripts/fuzz.sh build/fuzz/fuzz $(FUZZ_SECONDS) $(FUZZ_TARGETS)

## Time parsing, the native guess and the split rewrite per EDID, and menu
## rebuilds while a conflict check takes 200 ms.
bench:
	@scripts/install-deps.sh bench
	@cmake --preset release > /dev/null
	@cmake --build --preset release -j $(JOBS) --target edid-bench menu-bench clock-bench
	@build/release/bench/edid-bench
	@build/release/bench/menu-bench
	@build/release/bench/clock-bench

## Rewrite Resources/samples from the code that defines the sample monitors.
samples:
	@cmake --preset release > /dev/null
	@cmake --build --preset release -j $(JOBS) --target halvora-samples
	@build/release/tools/samples/halvora-samples Resources/samples

format:
	@clang-format -i $$(git ls-files '*.cpp' '*.hpp')

clean:
	@rm -rf build
