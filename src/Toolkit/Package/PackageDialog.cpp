#include "Toolkit/Package/PackageDialog.h"

#include "Foundation/Precondition.h"
#include "Toolkit/Alert.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Package/PackageIconProvider.h"
#include "Toolkit/Package/PackageListModel.h"
#include "Toolkit/Package/ResolvedPackagePath.h"
#include "Toolkit/PlainLabel.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"

#include <QAccessible>
#include <QAction>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QListView>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QTreeView>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// @p folder, or the one that the package it lies in lies in.
QString outsideOfPackages(const PackageType &type, const QString &folder)
{
    const QString package = type.packageAround(folder + "/any"_L1);
    return package.isEmpty() ? folder : QFileInfo(package).absolutePath();
}

QString startFolder(PackageDialog::Panel panel, const PackageType &type, const QString &startPath)
{
    const QString folder = panel == PackageDialog::Panel::Open
                               ? startPath
                               : QFileInfo(startPath).absolutePath();
    const QString outside = outsideOfPackages(type, folder);
    return QFileInfo(outside).isDir() ? outside : QDir::homePath();
}

std::optional<QString> run(PackageDialog *newDialog)
{
    // The parent may go while the dialog is open, and takes it along.
    const QPointer<PackageDialog> dialog = newDialog;
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!dialog)
        return {};
    const QString path = dialog->chosenPath();
    delete dialog;
    return accepted ? std::optional(path) : std::nullopt;
}

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

std::optional<QString> PackageDialog::getOpenPackage(QWidget *parent, const QString &title,
                                                     const PackageType &type,
                                                     const QString &startDirectory)
{
    return run(new PackageDialog(Panel::Open, type, title, startDirectory, parent));
}

std::optional<QString> PackageDialog::getSavePackage(QWidget *parent, const QString &title,
                                                     const PackageType &type,
                                                     const QString &suggestedPath)
{
    return run(new PackageDialog(Panel::Save, type, title, suggestedPath, parent));
}

PackageDialog::PackageDialog(Panel panel, const PackageType &type, const QString &title,
                             const QString &startPath, QWidget *parent)
    : QFileDialog(parent, title, startFolder(panel, type, startPath))
    , m_panel(panel)
    , m_type(type)
    , m_files(new PackageListModel(type, this))
{
    setObjectName(u"packageDialog"_s);
    setUpPanel();
    findParts();
    setUpModel();
    setUpMessage();
    disableDeletion();
    connectSignals();
    if (m_panel == Panel::Save)
        m_suggestedName = m_type.withSuffix(QFileInfo(startPath).fileName());
    m_nameEdit->setText(m_suggestedName);
    updateButton();
}

void PackageDialog::accept()
{
    const QString typed = m_nameEdit->text();
    if (typed.trimmed().isEmpty()) {
        activate(selectedIndex());
        return;
    }
    const ResolvedPackagePath choice = m_panel == Panel::Open
                                           ? ResolvedPackagePath::toOpen(m_type, directory(), typed)
                                           : ResolvedPackagePath::toSave(m_type, directory(),
                                                                         typed);
    switch (choice.kind) {
    case ResolvedPackagePath::Kind::Package:
        choose(choice.path);
        break;
    case ResolvedPackagePath::Kind::Replacement:
        askToReplace(choice.path);
        break;
    case ResolvedPackagePath::Kind::Folder:
        showFolder(choice.path);
        m_nameEdit->setText(m_suggestedName);
        break;
    case ResolvedPackagePath::Kind::Refusal:
        showMessage(choice.sentence);
        break;
    }
}

void PackageDialog::activate(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    if (!m_files->isPackage(index)) {
        showFolder(PackageListModel::path(index));
        return;
    }
    m_nameEdit->setText(QFileInfo(PackageListModel::path(index)).fileName());
    accept();
}

void PackageDialog::takeSelection()
{
    // While a name is typed, the selection follows it, and not the other way round.
    const QModelIndex index = selectedIndex();
    if (index.isValid() && !m_nameEdit->hasFocus()) {
        const QString name = QFileInfo(PackageListModel::path(index)).fileName();
        if (m_files->isPackage(index) && name != m_nameEdit->text())
            m_nameEdit->setText(name);
        else if (!m_files->isPackage(index) && m_panel == Panel::Open)
            m_nameEdit->clear();
    }
    updateButton();
}

QModelIndex PackageDialog::selectedIndex() const
{
    const QModelIndexList rows = m_list->selectionModel()->selectedRows();
    return rows.isEmpty() ? QModelIndex() : rows.first();
}

/// Against QFileDialog, which takes packages for what they are: folders, of which none is a file to
/// open, and which are entered rather than saved at.
void PackageDialog::updateButton()
{
    m_acceptButton->setText(m_panel == Panel::Open ? tr("&Open", "Button of the open panel")
                                                   : tr("&Save", "Button of the save panel"));
    m_acceptButton->setEnabled(!m_nameEdit->text().trimmed().isEmpty()
                               || selectedIndex().isValid());
}

void PackageDialog::showEvent(QShowEvent *event)
{
    QFileDialog::showEvent(event);
    // Typing replaces the name and leaves the suffix.
    if (!m_suggestedName.isEmpty() && m_nameEdit->text() == m_suggestedName)
        m_nameEdit->setSelection(0, int(m_suggestedName.size() - m_type.suffix.size() - 1));
}

bool PackageDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_acceptButton && event->type() == QEvent::EnabledChange)
        updateButton();
    return QFileDialog::eventFilter(watched, event);
}

void PackageDialog::showFolder(const QString &path)
{
    setDirectory(path);
    // What can be opened lies in the folder that is shown; a name to save under goes along.
    if (m_panel == Panel::Open)
        m_nameEdit->clear();
}

/// Places, bookmarks and the history know nothing of packages.
void PackageDialog::leavePackage()
{
    const QString folder = directory().absolutePath();
    if (const QString outside = outsideOfPackages(m_type, folder); outside != folder)
        showFolder(outside);
}

void PackageDialog::showMessage(const QString &sentence)
{
    m_message->setText(sentence);
    m_messageRow->setVisible(!sentence.isEmpty());
    if (sentence.isEmpty())
        return;
    m_nameEdit->selectAll();
    QAccessibleEvent alert(m_message, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void PackageDialog::askToReplace(const QString &path)
{
    const AlertContents question{.messageText = tr("%1 already exists. Do you want to replace it?",
                                                   "%1 is the quoted name of a package")
                                                    .arg(ResolvedPackagePath::quotedName(path)),
                                 .informativeText = tr("What it holds will be overwritten.",
                                                       "Said of a package that is to be replaced"),
                                 .buttons = {tr("Replace", "Button that overwrites a package"),
                                             tr("Cancel", "Button that leaves things as they are")},
                                 .firstButtonDestroys = true};
    Alert::beginSheet(question, this, [this, path](int button) {
        if (button == 0)
            choose(path);
    });
}

void PackageDialog::choose(const QString &path)
{
    m_chosenPath = path;
    done(Accepted);
}

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
    // Its tooltips are paths of folders.
    showPlainToolTipsIn(partOf<QListView>(this, u"sidebar"_s));
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
    m_message = new PlainLabel;
    m_message->setObjectName(u"packageMessage"_s);
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
void PackageDialog::disableDeletion()
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
        showMessage({});
        updateButton();
    });
    connect(this, &QFileDialog::directoryEntered, this, &PackageDialog::leavePackage);
    // The dialog itself disables it whenever it finds no file of the typed name.
    m_acceptButton->installEventFilter(this);
}

} // namespace tembra
