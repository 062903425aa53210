#include "Toolkit/Package/PackageDialog.h"

#include "Foundation/Precondition.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Package/PackageIconProvider.h"
#include "Toolkit/Package/PackageListModel.h"
#include "Toolkit/Theme.h"

#include <QAction>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QLocale>
#include <QPushButton>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QTreeView>

#include <algorithm>

// How a package dialog is made of a QFileDialog.

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize usualSize(820, 520);

// QFileSystemModel's columns have no names.
constexpr int nameColumn = 0;
constexpr int typeColumn = 2;
constexpr int dateColumn = 3;

constexpr int widestHint = 240;
constexpr int usualNameLength = 40; // characters

/// One long name does not make the rows of the list wider than what can be seen.
class NarrowDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return {std::min(size.width(), widestHint), size.height()};
    }
};

/// A part of QFileDialog, which has no other way to get at it.
template<typename Widget>
Widget *partOf(const QFileDialog *dialog, const QString &objectName)
{
    auto *part = dialog->findChild<Widget *>(objectName);
    require(part, "QFileDialog has the parts that it has had since Qt 4");
    return part;
}

} // namespace

void PackageDialog::setUpPanel()
{
    setOption(DontUseNativeDialog);
    setOption(DontUseCustomDirectoryIcons);
    setOption(DontResolveSymlinks);
    setOption(ReadOnly, m_panel == Panel::Open);
    setAcceptMode(m_panel == Panel::Open ? AcceptOpen : AcceptSave);
    // In the modes for folders QFileDialog rewrites what is typed.
    setFileMode(AnyFile);
    setNameFilter(u"%1 (*.%2)"_s.arg(m_type.name, m_type.suffix));
    resize(usualSize.expandedTo(sizeHint()));
}

void PackageDialog::findParts()
{
    m_nameEdit = partOf<QLineEdit>(this, u"fileNameEdit"_s);
    m_list = partOf<QListView>(this, u"listView"_s);
    m_table = partOf<QTreeView>(this, u"treeView"_s);
    const auto *buttons = partOf<QDialogButtonBox>(this, u"buttonBox"_s);
    m_acceptButton = buttons->button(m_panel == Panel::Open ? QDialogButtonBox::Open
                                                            : QDialogButtonBox::Save);
    for (QAbstractButton *button : buttons->buttons())
        button->setIcon({});
}

void PackageDialog::setUpModel()
{
    // Both are children that come after the dialog's file system model, whose thread asks the icon
    // provider to its end.
    setIconProvider(new PackageIconProvider(m_type, this));
    setProxyModel(m_files);
    m_list->setItemDelegate(new NarrowDelegate(m_list));
    m_list->setTextElideMode(Qt::ElideMiddle);
    setUpColumns();
}

/// Wide enough for usual names, the name of the type and today's date.
void PackageDialog::setUpColumns()
{
    const QString name(usualNameLength, u'n');
    const QString now = QLocale().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);
    const QList<std::pair<int, QString>> texts{{nameColumn, name},
                                               {typeColumn, m_type.name},
                                               {dateColumn, now}};
    for (const auto &[column, text] : texts) {
        const int width = fontMetrics().horizontalAdvance(text) + 2 * theme::margin;
        if (m_table->header()->sectionSize(column) < width)
            m_table->header()->resizeSection(column, width);
    }
}

void PackageDialog::setUpMessage()
{
    m_message = new QLabel;
    m_message->setObjectName(u"packageMessage"_s);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_messageRow = new QWidget;
    m_messageRow->hide();
    auto *row = new QHBoxLayout(m_messageRow);
    row->setContentsMargins({});
    row->setSpacing(theme::relatedSpacing);
    row->addWidget(new EmojiLabel(u"⚠️"_s));
    row->addWidget(m_message, 1);
    auto *grid = qobject_cast<QGridLayout *>(layout());
    require(grid, "QFileDialog's layout is a grid");
    grid->addWidget(m_messageRow, grid->rowCount(), 0, 1, grid->columnCount());
}

/// A dialog that asks for a name is not the place to delete backups, or folders by one key.
void PackageDialog::takeDeletingAway()
{
    for (const QAbstractItemView *view :
         {static_cast<QAbstractItemView *>(m_list), static_cast<QAbstractItemView *>(m_table)})
        for (QShortcut *shortcut : view->findChildren<QShortcut *>())
            shortcut->setEnabled(false);
    partOf<QAction>(this, u"qt_delete_action"_s)->setVisible(false);
    if (m_panel == Panel::Save)
        return;
    partOf<QAction>(this, u"qt_rename_action"_s)->setVisible(false);
    partOf<QAction>(this, u"qt_new_folder_action"_s)->setVisible(false);
    partOf<QWidget>(this, u"newFolderButton"_s)->hide();
}

void PackageDialog::connectSignals()
{
    for (const QAbstractItemView *view :
         {static_cast<QAbstractItemView *>(m_list), static_cast<QAbstractItemView *>(m_table)}) {
        disconnect(view, &QAbstractItemView::activated, this, nullptr);
        connect(view, &QAbstractItemView::activated, this, &PackageDialog::activate);
    }
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &PackageDialog::takeSelection);
    connect(m_nameEdit, &QLineEdit::textChanged, this, [this] {
        say({});
        updateButton();
    });
    connect(this, &QFileDialog::directoryEntered, this, &PackageDialog::leavePackage);
    // The dialog itself disables it whenever it finds no file of the typed name.
    m_acceptButton->installEventFilter(this);
}

} // namespace tembra
