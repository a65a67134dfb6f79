"""Everyone's answers held against the truth, and against what the project requires of its own."""

from collections import Counter

from corpus.shelf import HEALTHY, SILENT

OURS = "velmora-scan"
RIGHT, WRONG, NONE, FALSE = "right", "wrong", "no answer", "false answer"

_MARGIN, _SHARE = 0.050, 0.01
_VARIANTS, _EXTENSIONS, _RIGHT_SHARE, _WITHOUT_AUDIO = 230, 37, 0.97, 150


def verdict(variant, truth, answer) -> str:
    """Right is within 50 ms and within 1 % of the true seconds; for a file without audio, no answer."""
    if variant.group == SILENT:
        return RIGHT if answer is None else FALSE
    if answer is None:
        return NONE
    return RIGHT if abs(answer - truth) <= min(_MARGIN, _SHARE * truth) else WRONG


class Judgement:
    """`truths` is {variant name: seconds}, `answers` {tool: {variant name: seconds}}."""

    def __init__(self, variants, truths, answers):
        self.variants, self.truths, self.answers = variants, truths, answers
        self.tools = list(answers)
        self.verdicts = {
            tool: {
                variant.name: verdict(variant, truths[variant.name], given.get(variant.name))
                for variant in variants
            }
            for tool, given in answers.items()
        }

    def group(self, name):
        return [variant for variant in self.variants if variant.group == name]

    def hard(self):
        """The variants that are marked as hard cases."""
        return [variant for variant in self.variants if variant.hard]

    def counts(self, tool, variants):
        """How often each verdict was passed on the tool's answers for some variants."""
        return Counter(self.verdicts[tool][variant.name] for variant in variants)

    def failures(self):
        """The variants for which our answer is not right."""
        return [variant for variant in self.variants if self.verdicts[OURS][variant.name] != RIGHT]

    def shortfalls(self):
        """What the requirement misses, as texts; empty when it is met."""
        healthy, silent = self.group(HEALTHY), self.group(SILENT)
        audible = [variant for variant in self.variants if variant.group != SILENT]
        right = sum(self.verdicts[OURS][variant.name] == RIGHT for variant in audible)
        false = self.counts(OURS, silent)[FALSE]
        extensions = {variant.extension for variant in healthy}
        requirements = (
            (len(healthy) >= _VARIANTS, f"{len(healthy)} healthy variants; {_VARIANTS} are required"),
            (len(extensions) >= _EXTENSIONS, f"{len(extensions)} extensions; {_EXTENSIONS} are required"),
            (
                right >= _RIGHT_SHARE * len(audible),
                f"{right} of {len(audible)} right; {_RIGHT_SHARE:.0%} are required",
            ),
            (len(silent) >= _WITHOUT_AUDIO, f"{len(silent)} without audio; {_WITHOUT_AUDIO} are required"),
            (false == 0, f"{false} false answers on files without audio; none is allowed"),
        )
        return [text for met, text in requirements if not met]
