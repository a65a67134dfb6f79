"""Encoders and a decoder that exist as libraries only, called through ctypes: libsndfile, opencore-amr,
vo-amrwbenc.
"""

import ctypes
import wave
from contextlib import closing
from pathlib import Path

from .tools import ToolFailed

SD2, VOC, W64, CAF, AU, AIFF, WAV, RF64 = (
    0x160000,
    0x080000,
    0x0B0000,
    0x180000,
    0x030000,
    0x020000,
    0x010000,
    0x220000,
)
S8, S16, S24, S32, U8, FLOAT, DOUBLE, ULAW, ALAW = (1, 2, 3, 4, 5, 6, 7, 0x10, 0x11)
IMA, MICROSOFT_ADPCM, GSM610, G721_32, G723_24, DWVW_16, ALAC_16 = (0x12, 0x13, 0x20, 0x30, 0x31, 0x41, 0x70)
LITTLE_ENDIAN_FILE = 0x10000000
_READ, _WRITE = 0x10, 0x20
_BLOCK = 4096


class _Info(ctypes.Structure):
    _fields_ = [
        ("frames", ctypes.c_int64),
        ("samplerate", ctypes.c_int),
        ("channels", ctypes.c_int),
        ("format", ctypes.c_int),
        ("sections", ctypes.c_int),
        ("seekable", ctypes.c_int),
    ]


def _sndfile():
    library = ctypes.CDLL("libsndfile.so.1")
    library.sf_open.restype = ctypes.c_void_p
    library.sf_strerror.restype = ctypes.c_char_p
    library.sf_writef_short.restype = library.sf_readf_short.restype = ctypes.c_int64
    return library


def _open(library, path, mode, info):
    handle = library.sf_open(str(path).encode(), mode, ctypes.byref(info))
    if not handle:
        raise ToolFailed(f"libsndfile: {path}: {library.sf_strerror(None).decode()}")
    return ctypes.c_void_p(handle)


def sndfile_write(source: Path, target: Path, form: int):
    """Writes the 16-bit WAV file `source` as `form` (a container, a sample kind and flags, added up)."""
    library = _sndfile()
    with closing(wave.open(str(source))) as reader:
        channels = reader.getnchannels()
        handle = _open(
            library, target, _WRITE, _Info(samplerate=reader.getframerate(), channels=channels, format=form)
        )
        while block := reader.readframes(_BLOCK):
            frames = len(block) // (2 * channels)
            if library.sf_writef_short(handle, block, ctypes.c_int64(frames)) != frames:
                raise ToolFailed(f"libsndfile: {target}: short write")
        library.sf_close(handle)
    return target


def sndfile_seconds(path: Path) -> float:
    """Decodes the whole file with libsndfile and counts."""
    library = _sndfile()
    info = _Info()
    handle = _open(library, path, _READ, info)
    block = (ctypes.c_short * (_BLOCK * info.channels))()
    frames = 0
    while (got := library.sf_readf_short(handle, block, ctypes.c_int64(_BLOCK))) > 0:
        frames += got
    library.sf_close(handle)
    return frames / info.samplerate


def amr_narrow_frames(source: Path, mode=7, discontinuous=False) -> list[bytes]:
    """AMR frames of a WAV file of 8,000 Hz mono; `mode` 0 to 7 (4.75 to 12.2 kbit/s)."""
    library = ctypes.CDLL("libopencore-amrnb.so.0")
    library.Encoder_Interface_init.restype = ctypes.c_void_p
    state = ctypes.c_void_p(library.Encoder_Interface_init(int(discontinuous)))

    def encode(samples, out):
        return library.Encoder_Interface_Encode(state, mode, samples, out, 0)

    frames = _frames(source, 160, encode)
    library.Encoder_Interface_exit(state)
    return frames


def amr_wide_frames(source: Path, mode=8, discontinuous=False) -> list[bytes]:
    """AMR-WB frames of a WAV file of 16,000 Hz mono; `mode` 0 to 8 (6.6 to 23.85 kbit/s)."""
    library = ctypes.CDLL("libvo-amrwbenc.so.0")
    library.E_IF_init.restype = ctypes.c_void_p
    state = ctypes.c_void_p(library.E_IF_init())

    def encode(samples, out):
        return library.E_IF_encode(state, mode, samples, out, int(discontinuous))

    frames = _frames(source, 320, encode)
    library.E_IF_exit(state)
    return frames


def _frames(source, samples, encode):
    out = ctypes.create_string_buffer(64)
    frames = []
    with closing(wave.open(str(source))) as reader:
        while len(block := reader.readframes(samples)) == 2 * samples:
            size = encode(block, out)
            frames.append(out.raw[:size])
    return frames
