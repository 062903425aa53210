#pragma once

#include <QValidator>

namespace tembra {

/// Lets only whole numbers into a field: nothing at all, or what a signed 64-bit integer can hold,
/// in base 10, with at most one leading "+" or "-" and nothing else.
///
/// A sign alone is not a number, so it is refused: a sign is typed before digits that are there.
class OnlyIntegerValueFormatter final : public QValidator
{
    Q_OBJECT

public:
    using QValidator::QValidator;

    static bool isPartialStringValid(const QString &text);

    State validate(QString &text, int &position) const override;
};

} // namespace tembra
