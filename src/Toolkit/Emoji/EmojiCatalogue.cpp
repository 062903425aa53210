#include "Toolkit/Emoji/EmojiCatalogue.h"

#include "Foundation/Precondition.h"
#include "Foundation/Text/EmojiSegmentation.h"

#include <QFile>

#include <map>
#include <memory>

// Outside of the namespace, as the macro demands.
static void initializeEmojiCatalogue()
{
    Q_INIT_RESOURCE(emoji_catalogue);
}

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QString catalogueFile(const QString &language)
{
    return u":/toolkit/emoji/emoji_%1.txt"_s.arg(language);
}

/// The language, as a catalogue is named, that serves best.
QString bestLanguage(const QStringList &languages)
{
    for (QString language : languages) {
        language.replace(u'-', u'_');
        for (const QString &candidate : {language, language.section(u'_', 0, 0)}) {
            if (QFile::exists(catalogueFile(candidate)))
                return candidate;
        }
    }
    return u"en"_s;
}

QString catalogueLines(const QString &language)
{
    QFile file(catalogueFile(language));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    require(isOpen, "the catalogue of emoji is built in");
    return QString::fromUtf8(file.readAll());
}

} // namespace

const EmojiCatalogue &EmojiCatalogue::inLanguage(const QStringList &languages)
{
    static std::map<QString, std::unique_ptr<const EmojiCatalogue>> catalogues;
    initializeEmojiCatalogue();
    const QString language = bestLanguage(languages);
    std::unique_ptr<const EmojiCatalogue> &catalogue = catalogues[language];
    if (!catalogue)
        catalogue = std::make_unique<const EmojiCatalogue>(catalogueLines(language));
    return *catalogue;
}

EmojiCatalogue::EmojiCatalogue(const QString &lines)
{
    qsizetype start = 0;
    for (qsizetype end = lines.indexOf(u'\n'); end >= 0; end = lines.indexOf(u'\n', start)) {
        addLine(lines.mid(start, end - start));
        start = end + 1;
    }
    index();
}

void EmojiCatalogue::addLine(const QString &line)
{
    if (line.startsWith(u'@')) {
        m_groups.push_back({.title = line.mid(1), .emoji = {}});
        return;
    }
    const bool isTone = line.startsWith(u'+');
    const qsizetype nameStart = line.indexOf(u'\t') + 1;
    const qsizetype nameEnd = isTone ? line.size() : line.indexOf(u'\t', nameStart);
    EmojiEntry entry{.text = line.mid(isTone ? 1 : 0, nameStart - 1 - (isTone ? 1 : 0)),
                     .name = line.mid(nameStart, nameEnd - nameStart),
                     .keywords = line.mid(nameEnd + 1),
                     .skinTones = {}};
    std::vector<EmojiEntry> &group = m_groups.back().emoji;
    (isTone ? group.back().skinTones : group).push_back(std::move(entry));
}

/// Once every entry has its place for good.
void EmojiCatalogue::index()
{
    for (const EmojiGroup &group : m_groups) {
        for (const EmojiEntry &entry : group.emoji) {
            m_entries.insert(withoutVariationSelectors(entry.text), &entry);
            for (const EmojiEntry &tone : entry.skinTones) {
                m_entries.insert(withoutVariationSelectors(tone.text), &tone);
                m_bases.insert(&tone, &entry);
            }
        }
    }
}

const EmojiEntry *EmojiCatalogue::find(const QString &emoji) const
{
    return m_entries.value(withoutVariationSelectors(emoji));
}

const EmojiEntry *EmojiCatalogue::base(const EmojiEntry *entry) const
{
    return m_bases.value(entry, entry);
}

} // namespace tembra
