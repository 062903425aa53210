#include "Toolkit/Emoji/SkinTonePicker.h"

#include "Toolkit/Emoji/EmojiCatalogue.h"
#include "Toolkit/Emoji/EmojiGrid.h"
#include "Toolkit/Emoji/EmojiGridModel.h"
#include "Toolkit/Theme.h"

#include <QVBoxLayout>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int toneCount = 5;

/// One person's tones stand in a row behind the emoji, those of two in a square below it.
QList<EmojiSection> sectionsOf(const EmojiEntry &base)
{
    QList<const EmojiEntry *> tones;
    for (const EmojiEntry &tone : base.skinTones)
        tones.append(&tone);
    if (tones.size() > toneCount)
        return {{.title = {}, .emoji = {&base}}, {.title = {}, .emoji = tones}};
    tones.prepend(&base);
    return {{.title = {}, .emoji = tones}};
}

int columnsFor(const EmojiEntry &base)
{
    return base.skinTones.size() > toneCount ? toneCount : int(base.skinTones.size()) + 1;
}

} // namespace

SkinTonePicker::SkinTonePicker(const EmojiEntry &base, QWidget *parent)
    : QWidget(parent)
    , m_model(new EmojiGridModel(columnsFor(base), this))
    , m_grid(new EmojiGrid(*m_model))
{
    m_model->setOffersSkinTones(false);
    m_model->setSections(sectionsOf(base));
    m_grid->setObjectName(u"skinTones"_s);
    m_grid->setAccessibleName(tr("Skin tones", "Name of a row of variants of an emoji"));
    m_grid->fitToContent();
    m_grid->setCurrentIndex(m_model->first());
    connect(m_grid, &EmojiGrid::chosen, this, &SkinTonePicker::chosen);
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &SkinTonePicker::currentChanged);
    connect(m_grid, &EmojiGrid::pointedAt, this, [this](const QModelIndex &index) {
        Q_EMIT currentChanged(index.isValid() ? index : m_grid->currentIndex());
    });
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::relatedSpacing, theme::relatedSpacing, theme::relatedSpacing,
                               theme::relatedSpacing);
    layout->addWidget(m_grid);
    setFocusProxy(m_grid);
}

} // namespace tembra
