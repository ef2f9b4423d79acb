# The two commands a newcomer needs: `make test` and `make demo`.
# Everything else goes through CMake presets (CMakePresets.json).

JOBS ?= $(shell nproc 2>/dev/null || sysctl -n hw.ncpu 2>/dev/null || echo 2)
FUZZ_SECONDS ?= 60

.PHONY: test demo app dist selftest fuzz bench samples format clean

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

APP := build/app/HalvoraPro/macos/Halvora Pro.app

## Build and sign "Halvora Pro.app" (macOS only): build/app/HalvoraPro/macos/Halvora Pro.app.
## SPARKLE_DIR: a folder holding Sparkle.framework; SPARKLE_FEED_URL and
## SPARKLE_PUBLIC_ED_KEY: the appcast and Sparkle's EdDSA public key (without
## all three, updates are off); build/app keeps them until make clean. Signed ad
## hoc unless HALVORA_SIGN_IDENTITY names a Developer ID; notarised when
## HALVORA_NOTARY_* are set too (README).
app:
	@if [ "$$(uname -s)" != Darwin ]; then echo "make app builds the macOS application: run it on a Mac" >&2; exit 2; fi
	@scripts/install-deps.sh app
	@mkdir -p build
	@cmake --preset app $(if $(SPARKLE_DIR),-DHALVORA_SPARKLE_FRAMEWORK_DIR="$(SPARKLE_DIR)") \
		$(if $(SPARKLE_FEED_URL),-DHALVORA_SPARKLE_FEED_URL="$(SPARKLE_FEED_URL)") \
		$(if $(SPARKLE_PUBLIC_ED_KEY),-DHALVORA_SPARKLE_PUBLIC_ED_KEY="$(SPARKLE_PUBLIC_ED_KEY)") \
		> build/configure-app.log 2>&1 || (cat build/configure-app.log; exit 1)
	@grep -h -e '^-- Updates:' build/configure-app.log || true
	@cmake --build --preset app -j $(JOBS)
	@scripts/sign-app.sh "$(APP)"
	@echo "Built $(APP)"

## A zip (ditto) and a disk image (hdiutil) of the signed app, in build/dist.
dist: app
	@scripts/package-app.sh "$(APP)" build/dist

## The self-test build drives the real views through the tour on the recorded
## machine and writes each window to build/selftest-screenshots.
selftest:
	@if [ "$$(uname -s)" != Darwin ]; then echo "make selftest drives the AppKit views: run it on a Mac (halvora simulate runs the same scripts here)" >&2; exit 2; fi
	@scripts/install-deps.sh app
	@mkdir -p build
	@cmake --preset app > build/configure-app.log 2>&1 || (cat build/configure-app.log; exit 1)
	@cmake --build --preset app -j $(JOBS) --target halvora-pro-selftest
	@build/app/HalvoraPro/macos/halvora-pro-selftest --simulate scripts/tour.halvora \
		--screenshots build/selftest-screenshots

## Fuzz the EDID model, the settings decoder, the rig reader and the simulator's
## command parser for FUZZ_SECONDS each (clang's libFuzzer, ASan and UBSan),
## seeded with real files. FUZZ_TARGETS picks some of them (edid settings rig command).
fuzz:
	@scripts/install-deps.sh fuzz
	@cmake --preset fuzz > /dev/null
	@cmake --build --preset fuzz -j $(JOBS)
	@scripts/fuzz.sh build/fuzz/fuzz $(FUZZ_SECONDS) $(FUZZ_TARGETS)

## Time parsing, the native guess and the split rewrite per EDID (mean, median
## and 99th percentile over the real-monitor corpus, by size), menu
## rebuilds while a conflict check takes 200 ms, and count the application's
## timer wake-ups per minute on the recorded machine.
bench:
	@scripts/install-deps.sh bench
	@cmake --preset release > /dev/null
	@cmake --build --preset release -j $(JOBS) --target edid-bench edid-corpus-bench menu-bench timer-bench clock-bench
	@build/release/bench/edid-bench
	@build/release/bench/edid-corpus-bench
	@build/release/bench/menu-bench
	@build/release/bench/timer-bench
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
