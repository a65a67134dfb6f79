"""True playing times: each file decoded to its end by a reference decoder, its samples counted."""

import struct
import subprocess
from concurrent.futures import ThreadPoolExecutor

from corpus.native import sndfile_seconds
from corpus.tools import ToolFailed

# Each writes a WAV file to standard output. Where the decoder is not ffmpeg it is the format's own reference.
_TO_WAV = {
    "ffmpeg": [
        "ffmpeg",
        "-nostdin",
        "-v",
        "quiet",
        "-i",
        "{}",
        "-map",
        "0:a:0",
        "-c:a",
        "pcm_s16le",
        "-f",
        "wav",
        "-",
    ],
    "flac": ["flac", "--silent", "--decode", "--decode-through-errors", "--stdout", "{}"],
    "lame": ["lame", "--quiet", "--decode", "{}", "-"],
    "mpg123": ["mpg123", "-q", "--resync-limit", "-1", "-w", "-", "{}"],
    "oggdec": ["oggdec", "--quiet", "--output", "-", "{}"],
    "opusdec": ["opusdec", "--quiet", "--force-wav", "{}", "-"],
    "wvunpack": ["wvunpack", "-q", "--wav", "{}", "-o", "-"],
    "mpcdec": ["mpcdec", "{}", "-"],
    "sox amr-nb": ["sox", "-t", "amr-nb", "{}", "-t", "wav", "-"],
    "sox amr-wb": ["sox", "-t", "amr-wb", "{}", "-t", "wav", "-"],
    "sox": ["sox", "-V1", "{}", "-t", "wav", "-"],
}
_MAY_FAIL = {"ffmpeg", "flac", "wvunpack", "oggdec"}


def wav_seconds(stream) -> float:
    """Counts what a WAV stream really holds after its header; sizes in the header are not believed."""
    head = stream.read(12)
    if head[:4] not in (b"RIFF", b"RF64") or head[8:] != b"WAVE":
        raise ToolFailed("the decoder gave no WAV stream")
    rate = align = 0
    while len(prefix := stream.read(8)) == 8:
        name, size = prefix[:4], struct.unpack("<I", prefix[4:])[0]
        if name == b"data":
            break
        body = stream.read(size + size % 2)
        if name == b"fmt ":
            rate, align = struct.unpack_from("<I4xH", body, 4)
    if rate == 0 or align == 0:
        raise ToolFailed("the decoder's WAV stream has no format")
    octets = 0
    while block := stream.read(1 << 20):
        octets += len(block)
    return octets // align / rate


def decode(decoder, path) -> float:
    """The length in seconds that `decoder` finds in the file."""
    if decoder == "libsndfile":
        return sndfile_seconds(path)
    argv = [word.replace("{}", str(path)) for word in _TO_WAV[decoder]]
    with subprocess.Popen(
        argv, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL
    ) as child:
        seconds = wav_seconds(child.stdout)
    if child.returncode != 0 and decoder not in _MAY_FAIL:
        raise ToolFailed(f"{decoder}: {path}: status {child.returncode}")
    return seconds


def true_seconds(variant, root):
    """The variant's true length, and what is suspicious about it (a text, or nothing)."""
    truth = variant.truth
    if truth.decoder is None:
        return truth.seconds, None
    try:
        counted = decode(truth.decoder, root / variant.name)
    except ToolFailed as failure:
        return truth.seconds or 0.0, f"{variant.name}: {failure}"
    if truth.seconds is None:
        return counted, None
    if abs(counted - truth.seconds) > truth.slack:
        return (
            truth.seconds,
            f"{variant.name}: made as {truth.seconds:.3f} s, {truth.decoder} counts {counted:.3f} s",
        )
    return truth.seconds, None


def all_true_seconds(variants, root):
    """{name: seconds} for every variant; raises when a decoder contradicts how a file was made."""
    with ThreadPoolExecutor(2) as pool:
        answers = list(pool.map(lambda variant: true_seconds(variant, root), variants))
    doubts = [doubt for _, doubt in answers if doubt]
    if doubts:
        raise ToolFailed("the truth is in doubt:\n" + "\n".join(doubts))
    return {variant.name: seconds for variant, (seconds, _) in zip(variants, answers)}
