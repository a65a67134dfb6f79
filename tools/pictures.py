"""Takes the pictures of the README and of software centres: the program in a real window, on real files,
as the screen shows it. Called by ./dev pictures with the program and the project's folder."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

SIZE = 940, 700
ALBUMS = {
    'Anna Björk - Live in Lund': (227, 252, 198, 305, 241, 263, 289, 218, 331, 274),
    'Kvartett Norr - Vinterresa': (412, 385, 520, 298, 611, 447, 356, 489),
    'The Long Way Round': (3125, 2874, 3390, 2958, 3241, 3077),
    'Field Recordings': (1260, 842, 1575, 1980),
}
TITLES = ('Opening', 'Rain', 'Harbour', 'The Well', 'Snow on the Line', 'Market', 'Northbound', 'Glass',
          'First Light', 'Coda')
PATIENCE = 60  # seconds


def make_noise(path, seconds, *shape):
    subprocess.run(['sox', '-R', '-n', *shape, path, 'synth', seconds, 'pinknoise'], check=True,
                   stderr=subprocess.DEVNULL)


def make_music(folder):
    """Albums of real FLAC files, one of them in an archive, and one file that was cut off in its header."""
    noise = folder.parent / 'noise.wav'
    make_noise(noise, '60', '-r', '8000', '-c', '1', '-b', '16')
    for album, lengths in ALBUMS.items():
        (folder / album).mkdir(parents=True)
        for number, (title, seconds) in enumerate(zip(TITLES, lengths), start=1):
            subprocess.run(['sox', noise, '-C', '0', folder / album / f'{number:02} {title}.flac',
                            'repeat', str(seconds // 60), 'trim', '0', str(seconds)], check=True)
    subprocess.run(['zip', '-qrm0', 'Field Recordings.zip', 'Field Recordings'], cwd=folder, check=True)
    (folder / 'Kvartett Norr - Vinterresa/09 Glass.flac').write_bytes(b'fLaC\0\0\0')


def make_many(folder):
    """One file under so many names that a scan of them is seen. It has lost its first frame, which says how
    many there are, so that they are counted."""
    folder.mkdir()
    whole = folder.parent / 'whole.mp3'
    make_noise(whole, '240', '-r', '44100', '-c', '2', '-C', '128')
    (folder / 'track 0.mp3').write_bytes(whole.read_bytes()[1000:])
    for number in range(1, 8_000):
        os.link(folder / 'track 0.mp3', folder / f'track {number}.mp3')


class Screen:
    """A display with a window manager, and the program on it. A context."""

    def __init__(self, program, home, scale):
        self._program, self._home, self._scale = program, home, scale
        self._processes = []

    def __enter__(self):
        reader, writer = os.pipe()
        self._processes.append(subprocess.Popen(
            ['Xvfb', '-displayfd', str(writer), '-screen', '0', '2560x1600x24', '-nolisten', 'tcp',
             '-noreset'], pass_fds=[writer], stderr=subprocess.DEVNULL))
        os.close(writer)
        with os.fdopen(reader) as number:
            display = number.readline().strip()
        self._environment = {
            'PATH': os.environ['PATH'], 'LC_ALL': 'C.UTF-8', 'HOME': str(self._home),
            'DISPLAY': f':{display}', 'XDG_RUNTIME_DIR': str(self._home),
            'QT_QPA_PLATFORM': 'xcb', 'QT_QUICK_BACKEND': 'software', 'QT_SCALE_FACTOR': str(self._scale),
            'DBUS_SESSION_BUS_ADDRESS': f'unix:path={self._home}/no-bus'}
        self._processes.append(subprocess.Popen(['openbox'], env=self._environment, stdout=subprocess.DEVNULL,
                                                stderr=subprocess.DEVNULL))
        self.wait_for('get_desktop')
        return self

    def __exit__(self, *error):
        for process in reversed(self._processes):
            process.terminate()
            process.wait()

    def open(self, *paths):
        """A window of its own, of the size of the pictures, in place of the one before."""
        if len(self._processes) > 2:
            last = self._processes.pop()
            last.terminate()
            last.wait()
        self._processes.append(subprocess.Popen([self._program, *paths], env=self._environment))
        self._window = self.wait_for('search', '--sync', '--onlyvisible', '--class', 'velmora').split()[-1]
        width, height = (str(side * self._scale) for side in SIZE)
        self.xdotool('windowsize', '--sync', self._window, width, height,
                     'windowmove', self._window, '40', '40', 'mousemove', '2500', '1500')

    def xdotool(self, *arguments):
        return subprocess.run(['xdotool', *arguments], env=self._environment, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)

    def wait_for(self, *arguments):
        """What xdotool answers once it answers."""
        end = time.monotonic() + PATIENCE
        while True:
            answer = self.xdotool(*arguments)
            if answer.returncode == 0:
                return answer.stdout
            assert time.monotonic() < end, arguments
            time.sleep(0.05)

    def is_done(self):
        return ':' in self.xdotool('getwindowname', self._window).stdout  # the total

    def wait_until_done(self):
        end = time.monotonic() + PATIENCE
        while not self.is_done():
            assert time.monotonic() < end
            time.sleep(0.05)

    def take_settled(self, picture):
        time.sleep(2)  # until nothing moves but the background
        self.take(picture)

    def take_halfway(self, picture):
        """In the middle of a scan, as it turns out when it has ended."""
        pictures = []
        while not self.is_done():
            pictures.append(self._home / f'{len(pictures)}.png')
            self.take(pictures[-1])
        shutil.move(pictures[len(pictures) // 2], picture)

    def take(self, picture):
        width, height = (side * self._scale for side in SIZE)
        answer = self.wait_for('getwindowgeometry', '--shell', self._window)
        place = dict(line.split('=') for line in answer.split())
        assert (int(place['WIDTH']), int(place['HEIGHT'])) == (width, height), place
        subprocess.run(['ffmpeg', '-y', '-v', 'error', '-f', 'x11grab', '-draw_mouse', '0',
                        '-video_size', f'{width}x{height}',
                        '-i', f'{self._environment["DISPLAY"]}+{place["X"]},{place["Y"]}', '-frames:v', '1',
                        '-update', '1', '-pix_fmt', 'rgb24', '-compression_level', '9', '-pred', 'mixed',
                        picture], check=True, env=self._environment)


def main(program, project):
    home = pathlib.Path(tempfile.gettempdir()) / 'ann'  # the pictures show it
    home.mkdir(mode=0o700)
    try:
        music, many = home / 'Music', home / 'Radio'
        make_music(music)
        make_many(many)
        for scale, name in ((1, 'docs/pictures/{}.png'), (2, 'packaging/screenshots/{}@2x.png')):
            (project / name).parent.mkdir(parents=True, exist_ok=True)
            with Screen(program, home, scale) as screen:
                screen.open()
                screen.take_settled(project / name.format('idle'))
                screen.open(many)
                screen.take_halfway(project / name.format('scanning'))
                screen.open(music)
                screen.wait_until_done()
                screen.take_settled(project / name.format('done'))
                screen.xdotool('key', 'ctrl+d')
                screen.take_settled(project / name.format('details'))
    finally:
        shutil.rmtree(home)


main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]))
