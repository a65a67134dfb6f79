"""The completions, in the shells that read them: a terminal each, with the keys that a user presses."""

import os
import pathlib
import pty
import re
import select
import signal
import tempfile
import time
import unittest

from home import PATH, PROJECT
from manual import PROGRAMS, options_of_help

COMPLETIONS = PROJECT / 'packaging/completions'
PATIENCE = 120  # seconds for what takes a fraction of one


class Shell:
    """An interactive shell in a terminal, ready to complete both programs, in a folder of its own that holds
    Music/song.flac, Mono.wav, archive.zip and list.txt. A context."""

    def __init__(self, arguments, preparation, offer='{}\t\t\x01: \n'):
        """`offer`: the keys that show what a line can be completed to; Ctrl+A goes to its start,
        where a colon makes a command of it that does nothing."""
        self._arguments = arguments
        self._preparation = preparation
        self._offer = offer

    def __enter__(self):
        self._temporary = tempfile.TemporaryDirectory(prefix='test-docs-')
        self.folder = pathlib.Path(self._temporary.name)
        for name in ('Music/song.flac', 'Mono.wav', 'archive.zip', 'list.txt'):
            (self.folder / name).parent.mkdir(exist_ok=True)
            (self.folder / name).touch()
        self._child, self._terminal = pty.fork()
        if self._child == 0:
            os.chdir(self.folder)
            os.execvpe(self._arguments[0], self._arguments, {
                'PATH': PATH, 'HOME': self._temporary.name, 'TERM': 'dumb', 'LC_ALL': 'C.UTF-8', 'PS1': '',
                'COLUMNS': '400', 'LINES': '100'})
        self._after(f'stty -echo cols 400 rows 100; {self._preparation}\n')
        return self

    def __exit__(self, *error):
        os.kill(self._child, signal.SIGKILL)
        os.waitpid(self._child, 0)
        os.close(self._terminal)
        self._temporary.cleanup()

    def _after(self, keys):
        """What the terminal shows from `keys` on until the shell has run the next command."""
        os.write(self._terminal, keys.encode())
        return self._until_mark('echo MA""RK\n')

    def _until_mark(self, command):
        os.write(self._terminal, command.encode())
        shown = ''
        end = time.monotonic() + PATIENCE
        while not re.search(r'^MARK\r?$', shown, re.MULTILINE):
            ready, _, _ = select.select([self._terminal], [], [], max(0, end - time.monotonic()))
            if not ready:
                raise AssertionError(f'the shell does not answer; it shows {shown!r}')
            shown += os.read(self._terminal, 65536).decode(errors='replace')
        return shown

    def offered(self, line):
        """What Tab offers where `line` ends."""
        return self._after(self._offer.format(line))

    def completed(self, line):
        """What `line` is after Tab."""
        shown = self._after(f'{line}\t\x01echo "=" \n')
        return re.findall(r'^= (.*?)\s*$', shown, re.MULTILINE)[-1]


def bash():
    files = ' '.join(str(COMPLETIONS / f'{program}.bash') for program in PROGRAMS)
    return Shell(['bash', '--norc', '--noprofile', '-i'],
                 '. /usr/share/bash-completion/bash_completion; '
                 f'for f in {files}; do . $f; done; bind "set page-completions off"; '
                 'bind "set completion-query-items 0"; bind "set bell-style none"')


def zsh():
    return Shell(['zsh', '-f', '-i'],
                 f'fpath=({COMPLETIONS} $fpath); autoload -U compinit; compinit -u -D; LISTMAX=1000; '
                 'setopt no_beep no_auto_remove_slash')


def fish():
    files = ' '.join(str(COMPLETIONS / f'{program}.fish') for program in PROGRAMS)
    return Shell(['fish', '--no-config', '-i'], f'for f in {files}; source $f; end',
                 "complete -C '{}'\n")


class Completions(unittest.TestCase):
    def offers_every_option(self, shell):
        for program in PROGRAMS:
            options = {name for name in options_of_help(program) if name.startswith('--')}
            offered = set(re.findall(r'--[a-z0-9][a-z0-9-]*', shell.offered(f'{program} --')))
            self.assertEqual(offered, options, program)

    def completes(self, shell):
        for line, expected in (('velmora-scan --zi', 'velmora-scan --zip'),
                               ('velmora-scan --zip arch', 'velmora-scan --zip archive.zip'),
                               ('velmora-scan --files0-from li', 'velmora-scan --files0-from list.txt'),
                               ('velmora-scan --files Mus', 'velmora-scan --files Music/'),
                               ('velmora-scan --speed 1.2', 'velmora-scan --speed 1.25'),
                               ('velmora arch', 'velmora archive.zip'),
                               ('velmora --render M', 'velmora --render Music/')):
            with self.subTest(line):
                self.assertEqual(shell.completed(line), expected)

    def test_in_bash(self):
        with bash() as shell:
            self.offers_every_option(shell)
            self.completes(shell)

    def test_in_zsh(self):
        with zsh() as shell:
            self.offers_every_option(shell)
            self.completes(shell)

    def test_in_fish(self):
        with fish() as shell:
            self.offers_every_option(shell)
            self.completes(shell)


if __name__ == '__main__':
    unittest.main()
