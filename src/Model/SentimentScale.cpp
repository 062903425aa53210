#include "Model/SentimentScale.h"

#include "Model/DefaultsManager.h"

#include <QCoreApplication>

#include <numeric>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

const QString noEmoji = u"—"_s;

} // namespace

SentimentScale::SentimentScale(QList<Entry> entries, QString (*keyOfOverride)(int))
    : m_entries(std::move(entries))
    , m_overrideKey(keyOfOverride)
{
}

const SentimentScale &SentimentScale::personal()
{
    static const SentimentScale scale(
        {
            {QT_TRANSLATE_NOOP3("SentimentScale", "None", "Sentiment description: no selection"),
             noEmoji},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Satisfied", "Sentiment description"), u"🙂"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Disappointed", "Sentiment description"), u"😔"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Excited", "Sentiment description"), u"🤩"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Frustrated", "Sentiment description"), u"😖"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Tired", "Sentiment description"), u"🤕"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Proud", "Sentiment description"), u"😎"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Disengaged", "Sentiment description"), u"😐"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Confused", "Sentiment description"), u"🤔"_s},
        },
        DefaultsManager::personalOverrideKey);
    return scale;
}

const SentimentScale &SentimentScale::meeting()
{
    static const SentimentScale scale(
        {
            {QT_TRANSLATE_NOOP3("SentimentScale", "None", "Sentiment description: no selection"),
             noEmoji},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Impactful", "Sentiment description"), u"💥"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Passionate", "Sentiment description"), u"🙌"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Uneventful", "Sentiment description"), u"✅"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Tense", "Sentiment description"), u"⚡\uFE0F"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Frustrating", "Sentiment description"), u"😤"_s},
            {QT_TRANSLATE_NOOP3("SentimentScale", "Energizing", "Sentiment description"), u"🔋"_s},
        },
        DefaultsManager::meetingOverrideKey);
    return scale;
}

QList<int> SentimentScale::allValues() const
{
    QList<int> values(m_entries.size());
    std::iota(values.begin(), values.end(), 0);
    return values;
}

QString SentimentScale::label(int value) const
{
    const Label &source = m_entries.at(contains(value) ? value : 0).label;
    return QCoreApplication::translate("SentimentScale", source.text, source.comment);
}

QString SentimentScale::emoji(int value, const DefaultsManager &defaults) const
{
    return defaults.emojiOverride(overrideKey(value)).value_or(defaultEmoji(value));
}

QString SentimentScale::defaultEmoji(int value) const
{
    return contains(value) ? m_entries.at(value).emoji : noEmoji;
}

} // namespace tembra
