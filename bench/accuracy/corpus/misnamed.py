"""Good files under a wrong extension: what is in a file decides, not what it is called."""

import shutil

from .shelf import MISNAMED, Shelf, built

_ROWS = (
    ("mp3/vbr-v0.mp3", "mp3-as.wav", 5.3),
    ("wav/pcm_s16le.wav", "wav-as.mp3", 5.3),
    ("flac/plain.flac", "flac-as.mp3", 5.3),
    ("m4a/plain.m4a", "m4a-as.mp3", 5.3),
    ("mp3/cbr-128.mp3", "mp3-as.m4a", 5.3),
    ("ogg/vorbis.ogg", "ogg-as.mp3", 5.3),
    ("opus/music.opus", "opus-as.wav", 5.3),
    ("mka/flac.mka", "mka-as.ogg", 5.3),
    ("wma/v2.wma", "wma-as.mp3", 9.3),
    ("aiff/s24.aiff", "aiff-as.wav", 5.3),
    ("wv/plain.wv", "wv-as.ape", 5.3),
    ("mp3/abr.mp3", "mp3-as.wma", 5.3),
    ("caf/s16.caf", "caf-as.aif", 5.3),
    ("m4a/alac.m4a", "alac-as.flac", 5.3),
    ("au/s16.au", "au-as.voc", 5.3),
    ("dsf/stereo.dsf", "dsf-as.dff", 3.0),
    ("mpc/sv8.mpc", "mpc-as.ogg", 5.3),
    ("mka/webm.mka", "webm-as.mp3", 5.3),
    ("mka/webm.mka", "webm-as.ogg", 5.3),
    ("mka/webm.mka", "webm-as.m4a", 5.3),
)


def make(shelf: Shelf):
    for origin, name, seconds in _ROWS:
        shutil.copyfile(shelf.path(origin), shelf.path(name, MISNAMED))
        shelf.add(name, f"the file {origin}", built(seconds, "as the file it copies"), MISNAMED)
    for name in ("webm-as.mp3", "webm-as.ogg", "webm-as.m4a"):
        shelf.hard(name, MISNAMED)
    adts = shelf.path("aac/stereo.aac").read_bytes()
    shelf.put(
        "adts-as.m4a",
        "the file aac/stereo.aac",
        adts,
        built(230 * 1024 / 44100, "as the file it copies"),
        MISNAMED,
    )
    amr = shelf.path("amr/nb-dtx.amr").read_bytes()
    shelf.put("amr-as.3ga", "the file amr/nb-dtx.amr", amr, built(10.0, "as the file it copies"), MISNAMED)
