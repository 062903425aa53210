#pragma once

#include "PackageFolder.h"
#include "support/GuiTest.h"
#include "Toolkit/Package/PackageDialog.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>

namespace tembra {

using namespace Qt::StringLiterals;

/// A panel over a folder with packages, another folder and plain files, and what a user does in it.
class PackageDialogTest
{
protected:
    using Panel = PackageDialog::Panel;

    void setUp()
    {
        m_folder = std::make_unique<PackageFolder>();
        m_folder->addPackage(u"Monday.box"_s);
        m_folder->addPackage(u"two words.box"_s);
        m_folder->addPackage(u"קופסה.box"_s);
        m_folder->addPackage(longName());
        m_folder->addFolder(u"Plain"_s);
        m_folder->addPackage(u"Plain/Tuesday.box"_s);
        m_folder->addFile(u"notes.txt"_s);
        m_folder->addFile(u"file.box"_s);
    }

    void tearDown()
    {
        m_dialog.reset();
        m_folder.reset();
    }

    static QString longName() { return u"w"_s.repeated(196) + u".box"_s; }

    static QStringList packages()
    {
        return {u"Monday.box"_s, u"two words.box"_s, u"קופסה.box"_s, longName()};
    }

    static void bothViews()
    {
        QTest::addColumn<QFileDialog::ViewMode>("mode");
        QTest::newRow("list") << QFileDialog::List;
        QTest::newRow("table") << QFileDialog::Detail;
    }

    void show(Panel panel, const QString &path,
              std::optional<QFileDialog::ViewMode> mode = QFileDialog::Detail)
    {
        m_dialog = std::make_unique<PackageDialog>(panel, m_folder->type, u"Choose"_s, path);
        if (mode)
            m_dialog->setViewMode(*mode);
        m_dialog->show();
        QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
    }

    void open(QFileDialog::ViewMode mode = QFileDialog::Detail)
    {
        show(Panel::Open, m_folder->path(), mode);
        QTRY_COMPARE(listed().size(), 6);
    }

    void save(const QString &name, QFileDialog::ViewMode mode = QFileDialog::Detail)
    {
        show(Panel::Save, m_folder->path(name), mode);
        QTRY_COMPARE(listed().size(), 6);
    }

    /// What the dialog says to its caller; empty as long as it is open.
    QString chosen() const
    {
        return m_dialog->result() == QDialog::Accepted ? m_dialog->chosenPath() : QString();
    }

    QLineEdit *nameEdit() const { return m_dialog->findChild<QLineEdit *>(u"fileNameEdit"_s); }
    QLabel *message() const { return m_dialog->findChild<QLabel *>(u"packageMessage"_s); }
    QPushButton *button() const { return acceptButton(m_dialog.get()); }
    QString buttonText() const { return button()->text().remove(u'&'); }

    static QPushButton *acceptButton(const QDialog *dialog)
    {
        for (auto *button : dialog->findChildren<QPushButton *>())
            if (button->isDefault())
                return button;
        return nullptr;
    }

    QAbstractItemView *view() const
    {
        if (m_dialog->viewMode() == QFileDialog::List)
            return m_dialog->findChild<QListView *>(u"listView"_s);
        return m_dialog->findChild<QTreeView *>(u"treeView"_s);
    }

    QStringList listed() const
    {
        QStringList names;
        for (int row = 0; row < view()->model()->rowCount(view()->rootIndex()); ++row)
            names.append(view()->model()->index(row, 0, view()->rootIndex()).data().toString());
        return names;
    }

    QPoint placeOf(const QString &name) const
    {
        const int row = int(listed().indexOf(name));
        const QModelIndex index = view()->model()->index(row, 0, view()->rootIndex());
        view()->scrollTo(index);
        return view()->visualRect(index).topLeft() + QPoint(20, 5);
    }

    void click(const QString &name) const
    {
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, {}, placeOf(name));
    }

    void doubleClick(const QString &name) const
    {
        const QPoint place = placeOf(name);
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(view()->viewport(), Qt::LeftButton, {}, place);
    }

    void type(const QString &text) const
    {
        nameEdit()->setFocus();
        nameEdit()->selectAll();
        // Keys can be simulated for Latin letters only; others are pasted.
        if (std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 128; })) {
            QTest::keyClicks(nameEdit(), text);
        } else {
            gui::pasteText(*nameEdit(), text);
        }
        // What offers to complete it would be taken for the window that gets the next key.
        if (QWidget *popup = QApplication::activePopupWidget())
            QTest::keyClick(popup, Qt::Key_Escape);
    }

    Alert *question() const { return gui::sheetOf(*m_dialog); }

    void verifyDeletingIsImpossible() const
    {
        QVERIFY(!m_dialog->findChild<QAction *>(u"qt_delete_action"_s)->isVisible());
        click(u"Monday.box"_s);
        QTest::keyClick(view(), Qt::Key_Delete);
        QVERIFY(!QApplication::activeModalWidget()
                || QApplication::activeModalWidget() == m_dialog.get());
        QVERIFY(QFile::exists(m_folder->path(u"Monday.box/content.json"_s)));
    }

    void answer(const std::function<void(PackageDialog *)> &act)
    {
        QTimer::singleShot(0, qApp, [act] {
            auto *dialog = qobject_cast<PackageDialog *>(QApplication::activeModalWidget());
            QVERIFY(dialog && gui::waitUntilActive(*dialog));
            act(dialog);
        });
    }

    std::unique_ptr<PackageFolder> m_folder;
    std::unique_ptr<PackageDialog> m_dialog;
};

} // namespace tembra
