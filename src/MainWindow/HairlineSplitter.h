#pragma once

#include <QSplitter>

namespace tembra {

/// A splitter whose handle is one hairline that can be grabbed a little to either side. Its panes
/// cannot be collapsed.
class HairlineSplitter final : public QSplitter
{
    Q_OBJECT

public:
    explicit HairlineSplitter(Qt::Orientation orientation, QWidget *parent = nullptr);

protected:
    QSplitterHandle *createHandle() override;
};

} // namespace tembra
