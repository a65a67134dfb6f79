"""The page docs/accuracy.md: a summary, what is not right and why, each variant with everyone's answer."""

from corpus.shelf import HEALTHY, LYING, MISNAMED, SILENT, TRUNCATED
from judgement import FALSE, NONE, OURS, RIGHT, WRONG, Judgement
from reasons import REASONS

_TITLES = {
    HEALTHY: "Healthy files",
    MISNAMED: "Wrong extension",
    TRUNCATED: "Truncated files",
    LYING: "Files that lie",
    SILENT: "Files without audio",
}


def page(judgement: Judgement, versions) -> str:
    """The whole page in Markdown."""
    parts = [_introduction(judgement, versions), _summary(judgement), _failures(judgement)]
    parts.append(_hard(judgement))
    parts += [_variants(judgement, group) for group in (HEALTHY, MISNAMED, TRUNCATED, LYING)]
    parts.append(_silent(judgement))
    return "\n".join(parts)


def _introduction(judgement, versions):
    peers = ", ".join(f"{tool} {version}" for tool, version in versions.items())
    extensions = len({variant.extension for variant in judgement.group(HEALTHY)})
    sizes = {group: len(judgement.group(group)) for group in _TITLES}
    return f"""# Accuracy

Made by `./dev bench accuracy` from files that the project makes itself: by real encoders where there is one,
byte by byte where there is none. {sizes[HEALTHY]} healthy variants over {extensions} extensions,
{sizes[MISNAMED]} good files with a wrong extension, {sizes[TRUNCATED]} truncated ones, {sizes[LYING]} whose
headers or clocks are not those of what they hold, {sizes[SILENT]} files without audio.

- **True** is what a gapless player plays: the length of what was encoded where the file tells how much of its
  first and last frames is padding, else all that its frames decode to; of a truncated file, what is really
  there. Each truth comes from decoding the whole file, or from how it was put together, checked by a decoder
  wherever one reads it.
- **Right** is within 50 ms and within 1 %. In the tables a wrong answer is **bold**; a dash is no answer.
- `velmora-scan` measures all files in one run. The peers are {peers}.
  ffprobe is asked for the file's length (`format=duration`), mediainfo for the general one, TagLib for the
  accurate one. Some answer for the file as a whole, so that a film without sound has a length too; here that
  counts as false, as nothing can be heard.
- What `velmora-scan --check` finds in 200 damaged files and in all of these is in [check.md](check.md).
- Left out by design: chained Ogg files (the last page of the file decides) and Windows Media files without
  sound or cut off after their header (the header's play duration decides).
"""


def _summary(judgement):
    heads = [
        "",
        "healthy: right",
        WRONG,
        NONE,
        "wrong extension: right",
        "truncated: right",
        "lying: right",
        "without audio: false",
    ]
    rows = []
    for tool in judgement.tools:
        healthy, misnamed, truncated, lying, silent = (
            judgement.counts(tool, judgement.group(group)) for group in _TITLES
        )
        rows.append(
            [
                tool,
                f"{healthy[RIGHT]} ({healthy[RIGHT] / healthy.total():.1%})",
                healthy[WRONG],
                healthy[NONE],
                f"{misnamed[RIGHT]} of {misnamed.total()}",
                f"{truncated[RIGHT]} of {truncated.total()}",
                f"{lying[RIGHT]} of {lying.total()}",
                f"{silent[FALSE]} of {silent.total()}",
            ]
        )
    return "## Summary\n\n" + _markdown(heads, rows, 1)


def _failures(judgement):
    rows = [
        [
            variant.name,
            _seconds(judgement.truths[variant.name]),
            _seconds(judgement.answers[OURS].get(variant.name)),
            REASONS.get(variant.name, "not known yet"),
        ]
        for variant in judgement.failures()
    ]
    return "## Not right\n\n" + (
        _markdown(["file", "true", OURS, "reason"], rows, 1) if rows else "Nothing.\n"
    )


def _hard(judgement):
    cases = judgement.hard()
    rows = [
        [
            variant.name,
            variant.note,
            variant.reports,
            "nothing plays" if variant.group == SILENT else _seconds(judgement.truths[variant.name]),
            *_cells(judgement, variant),
        ]
        for variant in cases
    ]
    heads = ["file", "what it is", "public reports", "true", *judgement.tools]
    right = [f"{tool} {judgement.counts(tool, cases)[RIGHT]}" for tool in judgement.tools]
    return (
        "## Hard cases\n\n"
        "Files of the tables below that programs are known to time wrongly, with public reports of that.\n\n"
        + _markdown(heads, rows, 3)
        + f"\nRight, of {len(cases)}: {', '.join(right)}.\n"
    )


def _variants(judgement, group):
    rows = [
        [
            variant.name.partition("/")[2],
            variant.note,
            variant.truth.words,
            _seconds(judgement.truths[variant.name]),
            *_cells(judgement, variant),
        ]
        for variant in judgement.group(group)
    ]
    heads = ["file", "what it is", "truth known by", "true", *judgement.tools]
    return f"## {_TITLES[group]}\n\n" + _markdown(heads, rows, 3)


def _silent(judgement):
    rows = [
        [variant.name.partition("/")[2], variant.note, *_cells(judgement, variant)]
        for variant in judgement.group(SILENT)
    ]
    heads = ["file", "what it is", *judgement.tools]
    return f"## {_TITLES[SILENT]}\n\nAny answer is false.\n\n" + _markdown(heads, rows, 2)


def _cells(judgement, variant):
    """Everyone's answer to one variant; what is wrong or false is bold."""
    for tool in judgement.tools:
        shown = _seconds(judgement.answers[tool].get(variant.name))
        yield f"**{shown}**" if judgement.verdicts[tool][variant.name] in (WRONG, FALSE) else shown


def _seconds(answer):
    if answer is None:
        return "–"
    return f"{answer:.3f}" if answer < 1e7 else f"{answer:.3e}"


def _markdown(heads, rows, words):
    """A table whose first `words` columns are text; the others are aligned right."""
    lines = [heads, ["---"] * words + ["--:"] * (len(heads) - words), *rows]
    return "".join("| " + " | ".join(map(str, line)) + " |\n" for line in lines)
