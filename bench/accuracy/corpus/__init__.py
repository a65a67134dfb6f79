"""The corpus: files of every audio extension with known true lengths, made by real encoders and by hand.

It is made once and kept: a fingerprint of the makers stands in its list, and another fingerprint makes it
anew.
"""

import hashlib
import json
import shutil
from concurrent.futures import ThreadPoolExecutor
from dataclasses import asdict
from pathlib import Path

from . import (
    aac_amr,
    aiff_au,
    ape_musepack,
    asf_real,
    audible,
    caf,
    dsd,
    flac_wavpack,
    frames_hard,
    matroska,
    misnamed,
    mp4,
    mp4_made,
    mpeg,
    mpeg_made,
    ogg,
    silent,
    silent_media,
    truncated,
    voc_sd2,
    wav,
    wav_made,
)
from .shelf import Shelf, Truth, Variant

# The second row uses what the first has made.
_MAKERS = (
    (
        mp4,
        mpeg,
        aac_amr,
        ogg,
        matroska,
        asf_real,
        mpeg_made,
        frames_hard,
        wav,
        dsd,
        ape_musepack,
        aiff_au,
        caf,
        voc_sd2,
        wav_made,
        audible,
        silent,
    ),
    (flac_wavpack, mp4_made),
    (misnamed, truncated, silent_media),
)


def _fingerprint() -> str:
    """Changes with every change of the files that make the corpus and its truths."""
    here = Path(__file__).parent
    digest = hashlib.sha256()
    for path in sorted([*here.glob("*.py"), here.parent / "truth.py"]):
        digest.update(path.read_bytes())
    return digest.hexdigest()


def obtain(root: Path, true_seconds):
    """The variants and {name: true seconds} of the corpus in `root`, made there unless it is there already.
    `true_seconds(variants, root)` decodes."""
    manifest = root / "manifest.json"
    fingerprint = _fingerprint()
    if manifest.is_file():
        kept = json.loads(manifest.read_text())
        if kept["fingerprint"] == fingerprint:
            variants = [Variant(**{**row, "truth": Truth(**row["truth"])}) for row in kept["variants"]]
            return variants, kept["seconds"]
    variants = _make(root)
    seconds = true_seconds(variants, root)
    manifest.write_text(
        json.dumps(
            {
                "fingerprint": fingerprint,
                "variants": [asdict(variant) for variant in variants],
                "seconds": seconds,
            },
            indent=1,
        )
    )
    return variants, seconds


def _make(root: Path):
    if root.exists():
        if not (root / ".corpus").exists() and any(root.iterdir()):
            raise FileExistsError(f"{root} holds something else than the corpus")
        shutil.rmtree(root)
    root.mkdir(parents=True)
    (root / ".corpus").touch()
    shelf = Shelf(root)
    for makers in _MAKERS:
        with ThreadPoolExecutor(2) as pool:
            for done in [pool.submit(maker.make, shelf) for maker in makers]:
                done.result()
    return sorted(shelf.variants, key=lambda variant: variant.name)
