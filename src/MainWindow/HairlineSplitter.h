#pragma once

#include <QSplitter>

namespace tembra {

/// A splitter whose handle is one hairline; it can be grabbed a little to either side of it. Its
/// parts cannot be dragged away.
class HairlineSplitter final : public QSplitter
{
    Q_OBJECT

public:
    explicit HairlineSplitter(Qt::Orientation orientation, QWidget *parent = nullptr);

protected:
    QSplitterHandle *createHandle() override;
};

} // namespace tembra
