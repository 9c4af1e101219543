# The page docs/performance.md, from the JSON of the benchmark programs and facts of the machine.

def digits: # three significant ones, without an exponent
    if type != "number" then tostring
    elif . == 0 then "0"
    elif fabs >= 1000000 then "\(. / 1000000 | digits) M"
    elif fabs >= 100 then round | tostring
    else (2 - (fabs | log10 | floor)) as $places
        | (. * pow(10; $places) | round) / pow(10; $places) | tostring
    end;

def cell: if . == null then "" else digits end;
def row: "| " + join(" | ") + " |";
def table($head): # of rows of texts
    ($head | row), (["---"] + [$head[1:][] | "---:"] | row), (.[] | row);

# A case's name without what the library adds to it.
def case: .run_name | gsub("/(iterations|min_time|repeats|min_warmup_time):[^/]*"; "")
    | gsub("/(manual_time|real_time|process_time)"; "");
# Where the program keeps the time itself the processor's has no meaning.
def time: if .name | test("/manual_time") then .real_time else .cpu_time end;

def library_keys: ["name", "family_index", "per_family_instance_index", "run_name", "run_type",
    "repetitions", "repetition_index", "threads", "iterations", "real_time", "cpu_time",
    "time_unit", "label", "aggregate_name", "aggregate_unit", "error_occurred", "error_message",
    "big_o", "rms", "complexity_n"];

# The runs of a program, of each case the one that took least, in the program's order.
def best_runs:
    reduce (.benchmarks | sort_by(.family_index)[] | select(.run_type == "iteration")) as $run ([];
        ($run | case) as $case
        | (map(.case) | index($case)) as $at
        | ($run + {case: $case}) as $new
        | if $at == null then . + [$new]
          elif $run.error_occurred then .
          elif .[$at].error_occurred or ($run | time) < (.[$at] | time) then .[$at] = $new
          else . end);

def program_table:
    best_runs as $runs
    | (reduce ($runs[] | keys_unsorted[]) as $key ([];
        if any(.[]; . == $key) or any(library_keys[], "case"; . == $key) then . else . + [$key] end))
      as $counters
    | [$runs[] | if .error_occurred then [.case, .error_message] + [$counters[] | ""]
        else [.case, (time | digits) + " " + .time_unit] + [.[$counters[]] | cell] end]
    | table(["case", "time"] + $counters);

def program($name): map(select(.context.program == $name)) | first;
def counter($program; $case; $key):
    program($program) | if . == null then null else
        (best_runs | map(select(.case == $case and (.error_occurred | not))) | first | .[$key]?) end;

def verdict($goal; $most): # of a figure
    if . == null then "not measured"
    elif (if $most then . <= $goal else . >= $goal end) then "met" else "missed" end;

def goal($what; $figure; $goal; $most; $unit):
    [$what, (if $most then "at most " else "at least " end) + "\($goal)\($unit)",
        (if $figure == null then "" else "\($figure | digits)\($unit)" end),
        ($figure | verdict($goal; $most))];

def frame_cases: [["mover_100", "a rectangle moving among 100", null],
    ["mover_1000", "a rectangle moving among 1,000", 6],
    ["mover_10000", "a rectangle moving among 10,000", 20],
    ["fade", "a fade of 50 rectangles", 4], ["subtitle", "a subtitle of 80 glyphs", 7],
    ["page", "a page of 1,000 characters", 4], ["sprite", "a sprite over a picture", 5]];

. as $programs
| [frame_cases[] as [$case, $what, $goal] | $programs
    | [$what, (if $goal then "\($goal)" else "" end)]
      + [counter("frame"; "\($case)/32/\("kestrin", "efl", "cairo", "pixman", "sdl")"; "x_memcpy")
         | cell]
      + [if $goal then counter("frame"; "\($case)/32/kestrin"; "x_memcpy") | verdict($goal; true)
         else "" end]] as $frames
| [goal("a frame without a change"; $programs | counter("frame"; "idle_1000/32/kestrin"; "ns_frame");
        20; true; " ns"),
   (["fill_src_over", "blit_1", "blit_3", "blit_225"][] as $name
    | ["100x100", "1280x720"][] as $size
    | goal("driver: \($name), \($size)"; $programs | counter("gfx"; "\($name)/\($size)"; "ratio"); 4;
        false; " x")),
   goal("driver: glyph, 16x16"; $programs | counter("gfx"; "glyph/16x16"; "ratio"); 2; false; " x"),
   goal("libkestrin.so, stripped"; ($size | tonumber / 1024); 200; true; " KiB")] as $goals
| [$programs[] | .context.load_before | tonumber] as $loads
| [$programs | program("frame") | .benchmarks[]? | select(.rounds)] as $rounds
| "# Performance",
"",
"<!-- Written by scripts/performance from a run of all benchmarks. Change the script, not the page. -->",
"",
"Measured on \($programs[0].context.date[0:10]) on \($model), \($programs[0].context.num_cpus) cores,"
+ " \($arch)\($virtual),",
"built for release by \($compiler). All programs draw on memory: there",
"is no 2-D engine and no panel.",
"",
(if ($loads | max) / $programs[0].context.num_cpus < 0.75 then
"The machine was quiet: between \($loads | min) and \($loads | max) other processes ran when a program"
+ " began."
else
"The machine was **shared**: up to \($loads | max) other processes ran when a program began. Take the"
+ " times\nfor upper bounds; ratios of two things measured in turns suffer less."
end),
(if ($rounds | length) > 0 then
"Of the \($rounds | length) cases of frames that had quiet rounds \($rounds | map(.quiet) | add) of"
+ " \($rounds | map(.rounds) | add) rounds were quiet; only these count.",
"\([$programs | program("frame") | .benchmarks[] | select(.error_occurred)] | length) cases had none."
else empty end),
"",
"## Frames against copying their pixels",
"",
"How many times as long as one `memcpy` of the pixels that change does a whole frame take, through",
"`zelUpdateScreen` and through others that show the same scene at 1280 x 720 in 32 bits? EFL's buffer",
"engine is retained, as ours is, and finds out what has changed. Cairo, pixman and SDL2 are told and draw",
"at once into the visible buffer whatever touches the changed rectangles: a bound that a retained engine",
"with a back buffer, which copies once more, does not reach by the same loops.",
"",
($frames | table(["scene", "goal", "Kestrin", "EFL", "Cairo", "pixman", "SDL2", ""])),
"",
"## Goals",
"",
($goals | table(["", "goal", "measured", ""])),
"",
"A frame clears, paints and copies each changed band with calls of its own, each of which costs 250 to",
"500 ns in DirectFB before its first pixel; every change of drawing state is examined anew by the next",
"call that draws. Every copied band is presented, which wakes a thread of DirectFB. What moves has three",
"bands a frame (`copies` of frame_bench). For a glyph a surface is locked and released, the state changed",
"three times, and one blend done.",
"",
($programs | {presented: counter("painter"; "canvas_to_view/1x1"; "bare_ns"),
    glyph: counter("painter"; "glyph/16x16"; "bare_ns")}) as $bare
| (if $bare.presented and $bare.glyph then
"DirectFB's bare calls, one after another, take \($bare.presented | digits) ns for a presented copy of one"
+ " pixel, more when its",
"thread has gone to sleep, and \($bare.glyph | digits) ns for a glyph of 16 x 16. As often as a scene needs"
+ " them that is, in",
"times of its `memcpy`:",
"",
([frame_cases[] as [$case, $what, $goal] | $programs
  | [counter("frame"; "\($case)/32/kestrin"; "us_frame", "x_memcpy", "copies")] as [$us, $times, $copies]
  | select($goal and $us)
  | {subtitle: 80, page: 1000}[$case] as $glyphs
  | (if $glyphs then [$glyphs, "glyphs", $bare.glyph]
     else [$copies, "presented copies", $bare.presented] end) as [$calls, $name, $ns]
  | [$what, "\($calls) \($name)", "\($goal)", ($calls * $ns / 1000 / ($us / $times) | cell)]]
 | table(["scene", "needs", "goal", "these alone"])),
""
else empty end),
"Widgets are painted where they will be seen only, until a scene fills in copy mode (`BlendSrcCopy`):",
"from then on clears may blend, and widgets are painted whole.",
"",
"## All figures",
"",
"Every program of `bench/` has a table, and a comment at its head that says what its counters are. The",
"time is that of the processor, the least of the repetitions. A case that could not be measured says why.",
($programs[] | "", "### \(.context.program)_bench", "", program_table),
"",
"`scripts/performance` makes this page anew; `scripts/bench` prints the same figures.",
"`KESTRIN_DISPLAY_OPTIONS=no-hardware scripts/performance frame` measures frames without the graphics",
"driver. To see what a frame is made of: `valgrind --tool=callgrind build/release/bin/frame_bench`."
