#pragma once

// The --help texts of the halvora command and its subcommands.

namespace Halvora {

inline constexpr const char* versionText = "halvora " HALVORA_VERSION "\n";

inline constexpr const char* mainHelp =
    R"(halvora: split-resolution EDIDs for picture-by-picture monitors

usage: halvora COMMAND [ARGUMENTS]

commands:
  decode [--json|--native-sizes] FILE|-
                                show what an EDID says: identity, timings,
                                range limits, native resolution and the guess
                                whether it is a whole panel or one half
  split FILE|- [--native WxH]   write the EDID with the panel's native timing
        [-o OUT] [--hex]        preferred and its half-width split timing added
  merge FULL SPLIT [-o OUT]     add the timing the monitor reports in
        [--hex]                 picture-by-picture mode (SPLIT) to FULL
  cvt WIDTH HEIGHT [REFRESH]    the CVT reduced-blanking timing of a size
  simulate [--rig FILE]         run the whole application on a recorded
        [--settings FILE]       machine of monitors, driven by commands
        [--script FILE|-] [--strict] [--safe]

  halvora COMMAND --help        more about one command
  halvora --version             the version

FILE may be binary EDID data or a hex dump (edid-decode's, xxd -p, or bytes
separated by spaces), up to 1 MiB and 256 blocks; "-" reads standard input.
split and merge refuse an EDID whose checksums are wrong or whose count of
extension blocks disagrees with the blocks present (see their --help).
OUT is a new file or a regular one (replaced atomically, keeping its
permissions; a symbolic link is followed and kept); "-o -" is standard output.
Exit status: 0 done, 1 bad or unusable data (or output that could not be
written), 2 bad usage.
)";

inline constexpr const char* decodeHelp =
    R"(usage: halvora decode [--json|--native-sizes] FILE|-

Shows the EDID's size and extension blocks (and whether the base block's
count of them agrees), identity (vendor, product and serial numbers as
stored), product name, checksums (each wrong one with the value it should
have), preferred and native resolution, range limits,
detailed timings (base block and CTA-861 extensions), DisplayID timings, and
the guess whether the native resolution is the whole panel or a part of one.
Control characters in the EDID's text are shown escaped ("\u001b"), as in
JSON.

  --json           print one JSON object instead of text
  --native-sizes   print the panel sizes `split --native` may take for this
                   EDID, one WIDTHxHEIGHT a line: the whole panel when the
                   guess is sure, else the EDID's own native resolution and
                   each wider panel it may be part of (what shell completion
                   offers)

examples:
  halvora decode monitor.bin
  edid-decode monitor.bin | halvora decode --json -
)";

inline constexpr const char* splitHelp =
    R"(usage: halvora split FILE|- [--native WxH] [-o OUT] [--hex]
                     [--fix-checksums] [--accept-extension-count]

Writes the EDID with the panel's native timing as the preferred one and the
half-width split timing added (CVT reduced blanking at 60 Hz where either is
missing), as Halvora Pro writes it to the display. What changed is reported on
standard error.

  --native WxH   the panel's native resolution; needed when the EDID's own
                 native resolution may be one half of a wider panel. Each
                 number from 1 to 65536, and its half must fit a detailed
                 timing descriptor (at most 4095 wide and high)
  -o, --output OUT
                 write to OUT: a new file, or a regular file (replaced
                 atomically, keeping its permissions; a symbolic link is
                 followed and kept). Folders, devices, FIFOs and sockets are
                 refused. Without -o, or with -o -, standard output, which
                 must not be a terminal unless --hex is given
  --hex          write a hex dump instead of binary data
  --fix-checksums
                 an EDID with a wrong block checksum is refused, as the data
                 may be damaged; with this, each wrong checksum is replaced
                 by the one its block's content has (said on standard error)
  --accept-extension-count
                 an EDID whose base block counts a different number of
                 extension blocks than follow it is refused; with this, its
                 blocks are rewritten and written as they are

examples:
  halvora split monitor.bin -o monitor-split.bin
  halvora split half.bin --native 3440x1440 --hex
)";

inline constexpr const char* mergeHelp =
    R"(usage: halvora merge FULL SPLIT [-o OUT] [--hex]
                     [--fix-checksums] [--accept-extension-count]

Adds the first detailed timing of SPLIT (the EDID the monitor reports while
its picture-by-picture mode is on) to FULL (the EDID it reports otherwise).

  -o, --output OUT
           write to OUT: a new or regular file (replaced atomically, keeping
           its permissions; a symbolic link is followed and kept);
           otherwise, or with -o -, to standard output
  --hex    write a hex dump instead of binary data
  --fix-checksums
           go on with an input whose block checksums are wrong, giving each
           such block the checksum of its content (refused otherwise)
  --accept-extension-count
           go on with an input whose base block counts a different number
           of extension blocks than follow it (refused otherwise)

example:
  halvora merge full.bin pbp.bin -o merged.bin
)";

inline constexpr const char* cvtHelp =
    R"(usage: halvora cvt [--json] WIDTH HEIGHT [REFRESH]

Prints the VESA CVT reduced-blanking timing for a size (WIDTH and HEIGHT
from 1 to 65536, the most an EDID can state; REFRESH in Hz from 1 to 1000,
60 by default): its nine fields, refresh and line rate, whether it fits an
EDID detailed timing descriptor, and a modeline as `cvt -r` prints it. A size
so small that its pixel clock rounds down to 0 is refused.

  --json   print the timing as one JSON object

example:
  halvora cvt 1720 1440
)";

inline constexpr const char* simulateHelp =
    R"(usage: halvora simulate [--rig FILE] [--settings FILE] [--script FILE|-] [--strict] [--safe]

Runs Halvora Pro (its controller, menu, panels, identification window and
alerts) on a recorded machine: monitors with their EDIDs and their behaviour
when picture-by-picture is toggled, on a virtual clock. It prints what a user
would see. Commands come from the script, or from the terminal (type 'help').

  --rig FILE        the machine, as JSON (without it: an ultrawide-34 3440x1440
                    monitor that latches its EDID at plug, and a superwide-49
                    5120x1440 monitor that switches EDID when PBP is toggled):
                    {"monitors":[{"name":"u34","full":"u34.bin","split":"u34-pbp.bin",
                      "behavior":"switchesOnToggle|latchedAtPlug|fixedMissingSplit|fixedWithSplit",
                      "attached":true,"pbp":false,
                      "alterOnWrite":"serial|checksum|extensions"}],
                     "tools":{"edidOverrideService":false,"betterDisplay":false}}
                    EDIDs are hex text or files relative to the rig file.
                    "alterOnWrite" (optional): the port hands back what is
                    written to it with another serial number, a broken
                    checksum, or without its extension blocks, and
                    re-enumerates on every write.
  --settings FILE   the settings file to use and keep (default: a temporary
                    one, removed at the end)
  --script FILE|-   read commands from FILE or standard input
  --strict          stop with status 1 at the first command that cannot be
                    carried out, saying why on standard error (otherwise
                    the script goes on)
  --safe            start as with the Option key held: nothing saved is
                    restored, and nothing given back at quit, until you
                    pick an action in the menu

)";

} // namespace Halvora
