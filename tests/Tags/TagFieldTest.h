#pragma once

#include "Store/Objects/ManagedObjectContext.h"
#include "support/GuiTest.h"
#include "support/JournalFixture.h"
#include "Tags/TagField.h"

#include <QLineEdit>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>

namespace tembra {

/// A tag field in a window of its own, over a journal with one meeting, and another place for the
/// keyboard.
class TagFieldTest
{
public:
    TagFieldTest()
        : meeting(journal.addSessionDaysAgo(journal.addCounterpart(QStringLiteral("Ana")), 1))
    {
        window = std::make_unique<QWidget>();
        window->resize(500, 400);
        field = new TagField(journal.context(), journal.clock);
        field->setWraps(true);
        field->setCreatesNewTags(true);
        elsewhere = new QLineEdit;
        auto *layout = new QVBoxLayout(window.get());
        layout->addWidget(elsewhere);
        layout->addWidget(field);
        layout->addStretch();
        journal.settle();
        elsewhere->setFocus();
        window->show();
    }

    std::shared_ptr<Tag> make(const QString &name, const QString &emoji = {}) const
    {
        const auto tag = journal.context().insert<Tag>();
        tag->setName(name);
        tag->setEmoji(emoji);
        journal.context().processPendingChanges();
        return tag;
    }
    void compose(const QString &text) const { gui::commitText(*field, text); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(field, key, modifiers);
    }
    QStringList titles() const
    {
        QStringList titles;
        const auto tags = field->tags();
        for (const auto &tag : tags)
            titles.append(tag->titleString());
        return titles;
    }
    QStringList titlesOfMeeting() const
    {
        QStringList titles;
        const auto tags = meeting->sortedTags();
        for (const auto &tag : tags)
            titles.append(tag->titleString());
        return titles;
    }

    JournalFixture journal;
    std::shared_ptr<Session> meeting;
    std::unique_ptr<QWidget> window;
    TagField *field = nullptr;
    QLineEdit *elsewhere = nullptr;
};

} // namespace tembra
