#pragma once

#include <QListView>

namespace tembra {

class DateFormatting;
class SessionTimelineModel;

/// The horizontal strip of a teammate's meetings, the newest leftmost (rightmost where the language
/// runs from right to left). One tile can be selected.
class SummaryCollectionView final : public QListView
{
    Q_OBJECT

public:
    static constexpr QSize itemSize{46, 124};
    static constexpr int itemSpacing = 4;
    static constexpr int sectionInset = 8; ///< The margin before the first and after the last tile.

    explicit SummaryCollectionView(const DateFormatting &dates, QWidget *parent = nullptr);
    ~SummaryCollectionView() override;

    void setTimeline(SessionTimelineModel *timeline);

    /// −1 without a selection.
    int selectedRow() const;
    /// Makes a row the only selection and brings its tile into view.
    void selectAndShow(int row);
    void deselectAll();
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;

Q_SIGNALS:
    /// The user (not selectAndShow or deselectAll) selected another tile; −1 when none is left.
    void selectedRowChanged(int row);
    /// The user asked to delete the selected meeting.
    void deleteRequested();
    /// The user asked to edit the selected meeting.
    void editRequested();

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void selectionChanged(const QItemSelection &selected,
                          const QItemSelection &deselected) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void addDeleteAction();
    int tilesPerPage() const;

    bool m_isSelecting = false;
};

} // namespace tembra
