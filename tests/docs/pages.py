"""The commands and figures of README.md and docs/: commands are run on real files, figures looked up."""

import re
import unittest

from home import PROJECT, Home, sessions


def page(name):
    return (PROJECT / name).read_text()


def section(heading):
    """A section of the README."""
    return re.search(rf'^## {heading}$(.*?)^## ', page('README.md'), re.MULTILINE | re.DOTALL)[1]


def tables(text):
    """Each table in `text`: by the first cell of a row a dictionary, by the heading of a column."""
    found = []
    for block in re.findall(r'(?:^\|.*\|\n)+', text, re.MULTILINE):
        headings, _, *rows = [[cell.strip() for cell in line[1:-1].split('|')] for line in block.splitlines()]
        found.append({row[0]: dict(zip(headings[1:], row[1:])) for row in rows})
    return found


def numbers(text):
    return set(re.findall(r'\d[\d,.]*\d', text))


class Recipes(unittest.TestCase):
    maxDiff = None

    def test_write_what_the_page_shows(self):
        recipes = re.findall(r'^```sh\n(.*?)^```\n\n```\n(.*?)^```$', page('docs/recipes.md'),
                             re.MULTILINE | re.DOTALL)
        self.assertGreaterEqual(len(recipes), 10)
        with Home() as home:
            for commands, output in recipes:
                with self.subTest(commands):
                    self.assertEqual(home.output(commands), output)


class Readme(unittest.TestCase):
    maxDiff = None

    def test_shows_what_the_terminal_writes(self):
        blocks = re.findall(r'^```\n(.*?)^```$', section('The terminal'), re.MULTILINE | re.DOTALL)
        shown = [session for block in blocks for session in sessions(block)]
        self.assertGreaterEqual(len(shown), 3)
        with Home() as home:
            for command, output in shown:
                with self.subTest(command):
                    self.assertEqual(home.output(command).strip(), output.strip())

    def test_shows_the_figures_of_the_pages_that_measure(self):
        for heading, source in (('Accuracy', 'docs/accuracy.md'), ('Speed', 'docs/performance.md')):
            shown, = tables(section(heading))
            sentences = section(heading).partition('|')[0]
            self.assertEqual(numbers(sentences) - numbers(page(source)[:2500]), set())
            measured = next(table for table in tables(page(source)) if 'velmora-scan' in table)
            self.assertGreaterEqual(len(shown), 5)
            for name, figures in shown.items():
                with self.subTest(name):
                    self.assertGreaterEqual(len(figures), 2)
                    self.assertEqual(figures, {column: measured[name][column] for column in figures})

    def test_names_a_test_for_each_promise(self):
        promises, = tables(section('Promises'))
        self.assertGreaterEqual(len(promises), 5)
        for promise, cells in promises.items():
            self.assertRegex(cells['the test that holds it'], r'`\w+\.\w+`', promise)


if __name__ == '__main__':
    unittest.main()
