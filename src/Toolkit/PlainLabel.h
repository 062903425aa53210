#pragma once

#include <QLabel>

namespace tembra {

/// A label that shows its text as it is: Qt's own takes a text that looks like HTML for rich text.
class PlainLabel final : public QLabel
{
    Q_OBJECT

public:
    explicit PlainLabel(const QString &text = {}, QWidget *parent = nullptr);
};

} // namespace tembra
