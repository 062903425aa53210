#pragma once

#include <QCoreApplication>
#include <QString>

namespace tembra {

class Counterpart;

/// What a row of the teammate list says.
struct CounterpartRowViewModel
{
    Q_DECLARE_TR_FUNCTIONS(CounterpartRowViewModel)

public:
    explicit CounterpartRowViewModel(const Counterpart &counterpart);

    /// What stands in for a name that is missing; also the prompt while one is typed.
    static QString unnamedTitle();

    QString title; ///< The name, or unnamedTitle().
    bool isUnnamed; ///< Then the title is shown dimmer.
    QString meetingLine; ///< The most recent meeting; begins with a warning sign when overdue.
    QString tagEmoji;
    bool isOverdue;

    /// The whole row in one line, to be read out.
    QString accessibleText() const;
};

} // namespace tembra
