"""The manual pages: what they say of options and what the examples write."""

import re
import subprocess
import unittest

from home import PROJECT, VELMORA, VELMORA_SCAN, Home, extensions, sessions

PROGRAMS = {'velmora': VELMORA, 'velmora-scan': VELMORA_SCAN}


def page(program):
    return (PROJECT / f'packaging/man/{program}.1').read_text()


def section(program, name):
    return re.search(rf'^\.Sh {name}\n(.*?)(?=^\.Sh |\Z)', page(program), re.MULTILINE | re.DOTALL)[1]


def items(program):
    """What each item of the list of options describes, by the names as they are typed."""
    found = []
    for line in re.findall(r'^\.It Fl (.*)$', section(program, 'DESCRIPTION'), re.MULTILINE):
        names = re.match(r'\S+(?: , \S+)*', line)[0]  # until another macro comes
        found.append(['-' + name for name in names.split(' , ')])
    return found


def options_of_help(program):
    """Every option that --help names, as it is typed: "-l", "--list"."""
    text = subprocess.run([PROGRAMS[program], '--help'], check=True, stdout=subprocess.PIPE, text=True).stdout
    return set(re.findall(r'(?<![\w-])--?[a-z0-9A-Z][a-z0-9-]*', text))


class Manual(unittest.TestCase):
    maxDiff = None

    def test_describes_the_options_of_help_and_no_others(self):
        for program in PROGRAMS:
            with self.subTest(program):
                described = {name for item in items(program) for name in item}
                self.assertEqual(described, options_of_help(program))

    def test_has_every_option_in_the_synopsis(self):
        for program in PROGRAMS:
            with self.subTest(program):
                shown = set()
                for flag in re.findall(r'\bFl (\S+)', section(program, 'SYNOPSIS')):
                    shown |= {'-' + flag} if flag[0] == '-' else {'-' + letter for letter in flag}
                self.assertEqual(shown, {item[0] for item in items(program)})

    def test_names_the_exit_statuses_of_help(self):
        text = subprocess.run([VELMORA_SCAN, '--help'], check=True, stdout=subprocess.PIPE, text=True).stdout
        of_help = re.findall(r'(?:^|\s)(\d+) ', text[text.index('Exit status:'):])
        of_page = re.findall(r'^\.It (\d+)$', section('velmora-scan', 'EXIT STATUS'), re.MULTILINE)
        self.assertEqual(of_page, of_help)
        self.assertGreaterEqual(len(of_page), 6)

    def test_lists_the_extensions(self):
        names = re.search(r'^\.Ss NAMES\n(.*?)^\.Ss ', page('velmora-scan'), re.MULTILINE | re.DOTALL)[1]
        for text, kind in zip(names.split('.Pp'), ('audioExts', 'archiveExts')):
            listed = re.sub(r'\s+', ' ', text.partition('extensions\n')[2]).strip(' .').split(', ')
            self.assertEqual(listed, sorted(extensions(kind)))

    def test_has_every_section(self):
        expected = ['NAME', 'SYNOPSIS', 'DESCRIPTION', 'ENVIRONMENT', 'FILES', 'EXIT STATUS', 'EXAMPLES',
                    'SEE ALSO', 'BUGS']
        for program in PROGRAMS:
            names = re.findall(r'^\.Sh (.*)$', page(program), re.MULTILINE)
            self.assertEqual([name for name in names if name in expected], expected)

    def test_shows_what_its_examples_write(self):
        with Home() as home:
            for program, least in (('velmora', 2), ('velmora-scan', 7)):
                blocks = re.findall(r'^\.Bd -literal.*?\n(.*?)^\.Ed$', section(program, 'EXAMPLES'),
                                    re.MULTILINE | re.DOTALL)
                shown = [session for block in blocks for session in sessions(block)]
                self.assertGreaterEqual(len(shown), least)
                for command, output in shown:
                    with self.subTest(command):
                        self.assertEqual(home.output(command), output)


if __name__ == '__main__':
    unittest.main()
