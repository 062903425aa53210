#!/usr/bin/env python3
"""Makes the emoji palette's catalogue, one text per language, and the resource file that lists them.

A catalogue has three kinds of lines, in the order in which a palette shows them:

    @TITLE                    the emoji of a group follow (the title in English)
    EMOJI<tab>NAME<tab>WORDS  an emoji, what it is called, more words to find it by, parted by "|"
    +EMOJI<tab>NAME           the emoji above in a skin tone

Emoji, order and English names come from Unicode's emoji-test.txt, names in other languages and the
words from the annotations of CLDR. Where those have no name, the English one stands.
"""

import argparse
import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

TONES = dict((chr(0x1F3FB + i), i) for i in range(5))
EMOJI_LINE = re.compile(r"^([0-9A-F ]+?)\s*;\s*fully-qualified\s*#\s*\S+\s+E[0-9.]+\s+(.+?)\s*$")
GROUP_LINE = re.compile(r"^# group: (.+?)\s*$")
INHERITED = "↑↑↑"


def plain(emoji):
    """The form under which emoji are compared and annotated: without U+FE0F."""
    return emoji.replace("\ufe0f", "")


def without_tones(emoji):
    return "".join(character for character in plain(emoji) if character not in TONES)


def tones_of(emoji):
    """Orders the variants of a base: by the first person's tone, then by the second's."""
    tones = [TONES[character] for character in emoji if character in TONES]
    return tones[0], tones[-1]


def read_emoji(path):
    """Groups in the file's order: (title, [(emoji, English name)])."""
    groups = []
    for line in path.read_text(encoding="utf-8").splitlines():
        if match := GROUP_LINE.match(line):
            groups.append((match[1], []))
        elif match := EMOJI_LINE.match(line):
            emoji = "".join(chr(int(code, 16)) for code in match[1].split())
            groups[-1][1].append((emoji, match[2]))
    return [group for group in groups if group[1]]


def fold_tones(members):
    """Bases in order: (emoji, name, [(variant, name)])."""
    bases = {}
    by_name = {}
    for emoji, name in members:
        if not any(tone in emoji for tone in TONES):
            bases[plain(emoji)] = (emoji, name, [])
            by_name[name] = plain(emoji)
    for emoji, name in members:
        if not any(tone in emoji for tone in TONES):
            continue
        # Two people of different tones are written otherwise than the pair without.
        base = without_tones(emoji)
        if base not in bases:
            base = by_name.get(name.partition(":")[0])
        if base is None:
            sys.exit(f"{emoji} ({name}) is a variant of no emoji that is known")
        bases[base][2].append((emoji, name))
    for _, _, variants in bases.values():
        variants.sort(key=lambda variant: tones_of(variant[0]))
    return list(bases.values())


def read_annotations(folder, language):
    """{plain emoji: [name, words]} of a language, by what CLDR has for it and its parents."""
    annotations = {}
    parts = language.split("_")
    for length in range(1, len(parts) + 1):
        for part in ("annotationsDerived", "annotations"):
            path = folder / part / ("_".join(parts[:length]) + ".xml")
            if not path.exists():
                continue
            for element in ElementTree.parse(path).iter("annotation"):
                if not element.text or element.text == INHERITED:
                    continue
                entry = annotations.setdefault(plain(element.get("cp")), [None, None])
                entry[0 if element.get("type") == "tts" else 1] = element.text.strip()
    return annotations


def catalogue(groups, annotations):
    def named(emoji, english_name):
        name, words = annotations.get(plain(emoji), (None, None))
        return name or english_name, [word.strip() for word in (words or "").split("|")]

    lines = []
    for title, bases in groups:
        lines.append(f"@{title}\n")
        for emoji, name, variants in bases:
            name, words = named(emoji, name)
            words = "|".join(word for word in words if word and word != name)
            lines.append(f"{emoji}\t{name}\t{words}\n")
            lines.extend(f"+{variant}\t{named(variant, variant_name)[0]}\n"
                         for variant, variant_name in variants)
    return "".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--emoji-test", type=pathlib.Path, required=True)
    parser.add_argument("--annotations", type=pathlib.Path,
                        help="the folder with CLDR's annotations and annotationsDerived")
    parser.add_argument("--output", type=pathlib.Path, required=True, help="a folder")
    parser.add_argument("languages", nargs="+", help="such as en, de, pt_BR")
    arguments = parser.parse_args()

    groups = [(title, fold_tones(members)) for title, members in read_emoji(arguments.emoji_test)]
    if not groups:
        sys.exit(f"{arguments.emoji_test} lists no emoji")
    arguments.output.mkdir(parents=True, exist_ok=True)
    names = []
    for language in arguments.languages:
        annotations = {}
        if arguments.annotations:
            annotations = read_annotations(arguments.annotations, language)
        # A language without any names of its own is served by the English ones.
        if not annotations and language != "en":
            continue
        names.append(f"emoji_{language}.txt")
        text = catalogue(groups, annotations)
        (arguments.output / names[-1]).write_text(text, encoding="utf-8", newline="\n")
    files = "".join(f"    <file>{name}</file>\n" for name in names)
    (arguments.output / "emoji_catalogue.qrc").write_text(
        f'<RCC>\n  <qresource prefix="/toolkit/emoji">\n{files}  </qresource>\n</RCC>\n',
        encoding="utf-8")


if __name__ == "__main__":
    main()
