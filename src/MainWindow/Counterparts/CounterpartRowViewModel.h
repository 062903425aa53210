#pragma once

#include <QCoreApplication>
#include <QString>

namespace tembra {

class Counterpart;

/// The texts of a row of the teammate list.
struct CounterpartRowViewModel
{
    Q_DECLARE_TR_FUNCTIONS(CounterpartRowViewModel)

public:
    explicit CounterpartRowViewModel(const Counterpart &counterpart);

    /// The placeholder of a missing name, in the row and in its editor.
    static QString unnamedTitle();

    QString title; ///< The name, or unnamedTitle().
    bool isUnnamed; ///< Then the title is shown dimmer.
    QString meetingLine; ///< The most recent meeting; begins with a warning sign when overdue.
    QString tagEmoji;
    bool isOverdue;

    /// The whole row in one line, for assistive technology.
    QString accessibleText() const;
    /// Several lines: what the row shows.
    QString toolTip() const;
};

} // namespace tembra
