#include "Toolkit/PlainLabel.h"

namespace tembra {

PlainLabel::PlainLabel(const QString &text, QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setText(text);
}

} // namespace tembra
