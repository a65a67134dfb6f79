"""What desktops, software centres and file managers read, read as they do it."""

import configparser
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import tempfile
import unittest
import urllib.parse
import xml.etree.ElementTree as ElementTree

from home import PROJECT, extensions

PACKAGING = PROJECT / 'packaging'
ENTRY = PACKAGING / 'desktop/com.orventa.Velmora.desktop'
DOLPHIN = PACKAGING / 'file-managers/com.orventa.Velmora.dolphin.desktop'
NEMO = PACKAGING / 'file-managers/com.orventa.Velmora.nemo_action'
METAINFO = PACKAGING / 'desktop/com.orventa.Velmora.metainfo.xml'
MIME = PACKAGING / 'desktop/com.orventa.Velmora.mime.xml'
SYSTEM_MIME = '/usr/share/mime/packages/freedesktop.org.xml'


def groups(path):
    """The groups of a file in the format of desktop entries, each a dictionary."""
    parser = configparser.ConfigParser(interpolation=None, delimiters=['='], comment_prefixes=['#'])
    parser.optionxform = str
    parser.read_string(path.read_text())
    return {name: dict(parser[name]) for name in parser.sections()}


def listed(value):
    assert value.endswith(';')
    return value[:-1].split(';')


def types_by_extension(*packages):
    """The MIME types that the best globs for each extension have, where these packages are installed."""
    with tempfile.TemporaryDirectory(prefix='test-docs-') as folder:
        (pathlib.Path(folder) / 'packages').mkdir()
        for package in packages:
            shutil.copy(package, pathlib.Path(folder) / 'packages')
        subprocess.run(['update-mime-database', folder], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, env=os.environ | {'PKGSYSTEM_ENABLE_FSYNC': '0'})
        best = {}
        for line in (pathlib.Path(folder) / 'globs2').read_text().splitlines():
            weight, mime_type, glob = ([*line.split(':'), '', ''])[:3]
            if re.fullmatch(r'\*(\.\w+)+', glob):
                best.setdefault(glob[2:], {}).setdefault(int(weight), set()).add(mime_type)
        return {extension: weights[max(weights)] for extension, weights in best.items()}


class DesktopEntry(unittest.TestCase):
    def test_takes_every_name_that_is_audio_or_an_archive_and_nothing_else(self):
        types = types_by_extension(SYSTEM_MIME, MIME)
        taken = listed(groups(ENTRY)['Desktop Entry']['MimeType'])
        self.assertEqual(len(set(taken)), len(taken))
        names = extensions('audioExts') + extensions('archiveExts') + ['tar.gz', 'tar.bz2', 'tar.xz']
        self.assertEqual(len(names), 37 + 12 + 3)
        for name in names:
            with self.subTest(name):
                self.assertTrue(types.get(name, set()) & set(taken), types.get(name))
        meant = set().union(*(types[name] for name in names))
        self.assertEqual(set(taken) - meant, set())
        self.assertNotIn('inode/directory', taken)  # or folders would open here

    def test_is_started_over_the_bus_with_its_action(self):
        found = groups(ENTRY)
        entry = found['Desktop Entry']
        self.assertEqual(entry['DBusActivatable'], 'true')
        self.assertEqual(entry['StartupWMClass'], ENTRY.stem)
        self.assertEqual(listed(entry['Actions']), ['choose'])
        self.assertEqual(found['Desktop Action choose']['Exec'], 'velmora --choose')


class MimeTypes(unittest.TestCase):
    def test_add_only_names_that_the_system_does_not_know(self):
        known = types_by_extension(SYSTEM_MIME)
        space = {'m': 'http://www.freedesktop.org/standards/shared-mime-info'}
        added = [(kind.get('type'), glob.get('pattern')[2:])
                 for kind in ElementTree.parse(MIME).getroot().findall('m:mime-type', space)
                 for glob in kind.findall('m:glob', space)]
        self.assertGreaterEqual(len(added), 8)
        for mime_type, extension in added:
            with self.subTest(extension):
                self.assertIn(extension, extensions('audioExts'))
                if extension == '3ga':  # known as a film
                    self.assertEqual(known[extension], {'video/3gpp'})
                else:
                    self.assertNotIn(extension, known)


class Metainfo(unittest.TestCase):
    def setUp(self):
        self.root = ElementTree.parse(METAINFO).getroot()

    def test_keeps_the_lengths_of_the_guidelines(self):
        self.assertLessEqual(len(self.root.findtext('name')), 15)
        self.assertLessEqual(len(self.root.findtext('summary')), 35)
        self.assertFalse(self.root.findtext('summary').endswith('.'))
        for caption in self.root.findall('screenshots/screenshot/caption'):
            self.assertLessEqual(len(caption.text), 100)

    def test_shows_pictures_that_there_are(self):
        shots = self.root.findall('screenshots/screenshot')
        self.assertGreaterEqual(len(shots), 3)
        self.assertEqual([shot.get('type') for shot in shots], ['default'] + [None] * (len(shots) - 1))
        for shot in shots:
            self.assertTrue(shot.findtext('caption'))
            sizes = []
            for image in shot.findall('image'):
                self.assertTrue(image.text.startswith('https://'))
                folder = {'source': 'packaging/screenshots', 'thumbnail': 'docs/pictures'}[image.get('type')]
                picture = (PROJECT / folder / image.text.rsplit('/', 1)[1]).read_bytes()
                size = [int.from_bytes(picture[at:at + 4], 'big') for at in (16, 20)]
                self.assertEqual([str(side) for side in size], [image.get('width'), image.get('height')])
                sizes.append(size)
            self.assertEqual(sizes, [[1880, 1400], [940, 700]])

    def test_tells_of_the_releases_of_the_changelog(self):
        changelog = (PROJECT / 'CHANGELOG.md').read_text()
        released = re.findall(r'^## (\d\S*) - (\S+)$', changelog, re.MULTILINE)
        coming = re.findall(r'^## Unreleased\n\nWhat will be version (\S+)\.$', changelog, re.MULTILINE)
        releases = self.root.findall('releases/release')
        self.assertEqual([release.get('version') for release in releases],
                         coming + [version for version, _ in released])
        for release, (_, date) in zip(releases[len(coming):], released):
            self.assertEqual(release.get('date'), date)
        version = re.search(r'project\(velmora VERSION (\S+)', (PROJECT / 'CMakeLists.txt').read_text())[1]
        self.assertEqual(releases[0].get('version'), version)
        words = re.sub(r'\s+', ' ', changelog.replace('`', '')).lower()
        for item in self.root.findall('releases/release/description//li'):
            self.assertIn(item.text.lower(), words)

    def test_belongs_to_the_desktop_entry(self):
        self.assertEqual(self.root.findtext('id'), ENTRY.stem)
        self.assertEqual(self.root.findtext('launchable'), ENTRY.name)
        self.assertEqual(self.root.findtext('name'), groups(ENTRY)['Desktop Entry']['Name'])


class FileManagers(unittest.TestCase):
    def setUp(self):
        self.types = ['inode/directory', *listed(groups(ENTRY)['Desktop Entry']['MimeType'])]

    def test_dolphin_has_a_service_menu(self):
        found = groups(DOLPHIN)
        menu = found['Desktop Entry']
        self.assertEqual(menu['Type'], 'Service')
        self.assertIn('KonqPopupMenu/Plugin', menu['X-KDE-ServiceTypes'])  # for KIO 5
        self.assertEqual(listed(menu['MimeType']), self.types)
        action = found['Desktop Action ' + listed(menu['Actions'])[0]]
        self.assertEqual(action['Exec'], 'velmora %F')
        self.assertEqual(action['Name'], 'How Long Does It Play?')
        # The validator takes service menus for applications alone: of a service it does not know two keys.
        notes = subprocess.run(['desktop-file-validate', DOLPHIN], check=False, stdout=subprocess.PIPE,
                               text=True).stdout
        self.assertEqual(re.findall(r'key "(\w+)" is present .* type is "Service"', notes),
                         ['MimeType', 'Actions'])
        self.assertEqual(len(notes.splitlines()), 2)

    def test_nemo_has_an_action(self):
        action = groups(NEMO)['Nemo Action']
        self.assertEqual(action['Active'], 'true')
        self.assertEqual(action['Selection'], 'notnone')  # one, several; not the folder's background
        self.assertEqual(listed(action['Mimetypes']), self.types)
        self.assertEqual(listed(action['Dependencies']), ['velmora'])
        self.assertEqual(action['Name'].replace('_', ''), groups(DOLPHIN)['Desktop Action measure']['Name'])

    def test_nemo_hands_over_any_name(self):
        action = groups(NEMO)['Nemo Action']
        self.assertEqual(action['Quote'], 'double')
        names = ['/a b/c.flac', "/it's.wav", '/"quoted" $(x) `y`.mp3', '/back\\slash.ogg', '/100 %.wav']
        # As Nemo: %U are the URLs, each in quotes; the line is split as a shell does, nothing is expanded.
        urls = ['file://' + urllib.parse.quote(name, safe="!$&'()*+,;=:@/") for name in names]
        line = action['Exec'].replace('%U', ' '.join(f'"{url}"' for url in urls))
        words = shlex.split(line)
        self.assertEqual(words[0], 'velmora')
        self.assertEqual([urllib.parse.unquote(word.removeprefix('file://')) for word in words[1:]], names)

    def test_thunar_has_a_custom_action_to_paste(self):
        page = (PROJECT / 'docs/file-managers.md').read_text()
        action = ElementTree.fromstring(re.search(r'^```xml\n(.*?)^```$', page, re.MULTILINE | re.DOTALL)[1])
        self.assertEqual(action.tag, 'action')
        self.assertEqual(action.findtext('command'), 'velmora %F')
        self.assertEqual(action.findtext('name'), groups(DOLPHIN)['Desktop Action measure']['Name'])
        self.assertIsNotNone(action.find('directories'))
        self.assertIsNotNone(action.find('audio-files'))
        self.assertIsNotNone(action.find('other-files'))  # archives
        self.assertEqual(action.findtext('patterns'), '*')


if __name__ == '__main__':
    unittest.main()
