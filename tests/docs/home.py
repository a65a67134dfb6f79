"""The folders that the pages tell of, made with real encoders; what commands of the pages write there; and
what the sources say."""

import array
import math
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import wave

# The folder of the pages' commands; the tests' is another one.
HOME = '/home/ann'
RATE = 8000
PROJECT = pathlib.Path(__file__).resolve().parents[2]
VELMORA = os.environ.get('VELMORA', '')
VELMORA_SCAN = os.environ.get('VELMORA_SCAN', '')
# Where commands find both programs before any that is installed.
PATH = f'{pathlib.Path(VELMORA_SCAN).parent}:{pathlib.Path(VELMORA).parent}:{os.environ["PATH"]}'


def extensions(name):
    """The extensions in the list `name` of the sources."""
    source = (PROJECT / 'src/records/AudioExtensions.h').read_text()
    return re.findall(r'"(\w+)"', re.search(rf'\b{name} = {{(.*?)}}', source, re.DOTALL)[1])


def write_wav(path, seconds):
    """16-bit mono of this whole number of seconds: tones that swell."""
    path.parent.mkdir(parents=True, exist_ok=True)
    with wave.open(str(path), 'wb') as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        for second in range(seconds):
            step = 2 * math.pi * (220 + 20 * (second % 12)) / RATE
            file.writeframes(array.array('h', (int(i * math.sin(i * step)) for i in range(RATE))).tobytes())


def encode(path, seconds, *command):
    """As `write_wav`, then through an encoder, which is given the names of source and target."""
    source = path.with_suffix('.source.wav')
    write_wav(source, seconds)
    subprocess.run([*command, source, path], check=True)
    source.unlink()


class Home:
    """A context: the home of Ann, in a folder of its own."""

    def __enter__(self):
        self._temporary = tempfile.TemporaryDirectory(prefix='test-docs-')
        self.folder = pathlib.Path(self._temporary.name).resolve() / 'ann'
        music = self.folder / 'Music'
        live = music / 'Anna Björk - Live'
        live.mkdir(parents=True)
        encode(live / '01 Opening.flac', 28, 'sox', '-R')
        write_wav(live / '02 Rain.wav', 40)
        encode(music / 'Interview.mp3', 52, 'lame', '--quiet', '-V4')
        write_wav(self.folder / 'Day 1/harbour.wav', 28)
        write_wav(self.folder / 'Day 1/market.wav', 40)
        subprocess.run(['zip', '-qrm', 'Music/Field recordings.zip', 'Day 1'], cwd=self.folder, check=True)
        (music / 'party.m3u').write_bytes(
            '#EXTM3U\r\n#EXTINF:40,Rain\r\nAnna Björk - Live/02 Rain.wav\r\nInterview.mp3\r\n'.encode())
        shutil.copytree(music, self.folder / 'Backup')
        rain = self.folder / 'Backup/Anna Björk - Live/02 Rain.wav'
        os.truncate(rain, rain.stat().st_size - 15 * 2 * RATE)
        return self

    def __exit__(self, *error):
        self._temporary.cleanup()

    def output(self, commands):
        """What bash writes for `commands`, errors included, with the folder named as on the pages."""
        result = subprocess.run(
            ['bash', '-c', commands], cwd=self.folder, check=False, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
            env=os.environ | {'PATH': PATH, 'LC_ALL': 'C.UTF-8', 'XDG_RUNTIME_DIR': self._temporary.name})
        text = result.stdout.decode()
        return text.replace(str(self.folder), HOME).replace('\r', '')


def sessions(text):
    """The commands after "$ " in `text`, each with the lines after it."""
    found = []
    for line in text.splitlines(keepends=True):
        if line.startswith('$ '):
            found.append([line[2:], ''])
        elif found:
            found[-1][1] += line
    return found
