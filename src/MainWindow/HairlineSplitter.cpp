#include "MainWindow/HairlineSplitter.h"

#include "Toolkit/Theme.h"

#include <QPainter>

namespace tembra {

namespace {

class HairlineHandle final : public QSplitterHandle
{
public:
    using QSplitterHandle::QSplitterHandle;

protected:
    void paintEvent(QPaintEvent *) override
    {
        // With a handle of one pixel the widget is wider than what is seen, so that it can be grabbed.
        QPainter painter(this);
        painter.fillRect(contentsRect(), theme::hairline(palette()));
    }
};

} // namespace

HairlineSplitter::HairlineSplitter(Qt::Orientation orientation, QWidget *parent)
    : QSplitter(orientation, parent)
{
    setHandleWidth(1);
    setChildrenCollapsible(false);
}

QSplitterHandle *HairlineSplitter::createHandle()
{
    return new HairlineHandle(orientation(), this);
}

} // namespace tembra
