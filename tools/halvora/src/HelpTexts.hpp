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
        [--script FILE|-] [--strict]

  halvora COMMAND --help        more about one command
  halvora --version             the version

FILE may be binary EDID data or a hex dump (edid-decode's, xxd -p, or bytes
separated by spaces); "-" reads standard input.
Exit status: 0 done, 1 bad or unusable data, 2 bad usage.
)";

inline constexpr const char* decodeHelp =
    R"(usage: halvora decode [--json|--native-sizes] FILE|-

Shows the EDID's identity (vendor, product and serial numbers as stored),
product name, checksums, preferred and native resolution, range limits,
detailed timings (base block and CTA-861 extensions), DisplayID timings, and
the guess whether the native resolution is the whole panel or a part of one.

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

Writes the EDID with the panel's native timing as the preferred one and the
half-width split timing added (CVT reduced blanking at 60 Hz where either is
missing), as Halvora Pro writes it to the display. What changed is reported on
standard error.

  --native WxH   the panel's native resolution; needed when the EDID's own
                 native resolution may be one half of a wider panel
  -o, --output OUT
                 write to OUT (replaced atomically); otherwise to standard
                 output, which must not be a terminal unless --hex is given
  --hex          write a hex dump instead of binary data

examples:
  halvora split monitor.bin -o monitor-split.bin
  halvora split half.bin --native 3440x1440 --hex
)";

inline constexpr const char* mergeHelp =
    R"(usage: halvora merge FULL SPLIT [-o OUT] [--hex]

Adds the first detailed timing of SPLIT (the EDID the monitor reports while
its picture-by-picture mode is on) to FULL (the EDID it reports otherwise).

  -o, --output OUT
           write to OUT (replaced atomically); otherwise to standard output
  --hex    write a hex dump instead of binary data

example:
  halvora merge full.bin pbp.bin -o merged.bin
)";

inline constexpr const char* cvtHelp =
    R"(usage: halvora cvt [--json] WIDTH HEIGHT [REFRESH]

Prints the VESA CVT reduced-blanking timing for a size (REFRESH in Hz,
60 by default): its nine fields, refresh and line rate, and a modeline as
`cvt -r` prints it.

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
                    carried out (otherwise the script goes on)
  --safe            start as with the Option key held: nothing saved is
                    restored, and nothing given back at quit, until you
                    pick an action in the menu

)";

} // namespace Halvora
