#include "App/MainMenu.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>

namespace vesk {

namespace {

QString tr(const char *text) { return QCoreApplication::translate("MainMenu", text); }

/// Editing belongs to whichever field has the focus, and fields understand the keys themselves.
void pressInFocusedField(QKeySequence::StandardKey key)
{
    QWidget *field = QApplication::focusWidget();
    const QList<QKeySequence> sequences = QKeySequence::keyBindings(key);
    if (field == nullptr || sequences.isEmpty()) {
        return;
    }
    const QKeyCombination combination = sequences[0][0];
    for (const QEvent::Type type : {QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, combination.key(), combination.keyboardModifiers());
        QApplication::sendEvent(field, &event);
    }
}

void addEditing(QMenu &menu, const char *text, QKeySequence::StandardKey key)
{
    // No shortcut of its own: the field's is the same, and two of them would cancel each other out.
    menu.addAction(tr(text), [key] { pressInFocusedField(key); });
}

void showAbout(QWidget *window)
{
    QMessageBox::about(
        window, tr("About Vesk"),
        tr("<b>Vesk %1</b><br>Dictation and meeting notes.").arg(QStringLiteral(VESK_VERSION)));
}

} // namespace

void installMainMenu(QMainWindow &window, std::function<void()> openSettings)
{
    QMenuBar &bar = *window.menuBar();
    QMenu &vesk = *bar.addMenu(tr("Vesk"));
    vesk.addAction(tr("About Vesk"), [&window] { showAbout(&window); });
    vesk.addSeparator();
    vesk.addAction(tr("Settings"), QKeySequence(Qt::CTRL | Qt::Key_Comma), std::move(openSettings));
    vesk.addSeparator();
    vesk.addAction(tr("Hide Vesk"), &window, &QWidget::close);
    vesk.addAction(tr("Quit Vesk"), QKeySequence(QKeySequence::Quit), qApp, &QCoreApplication::quit);

    QMenu &edit = *bar.addMenu(tr("Edit"));
    addEditing(edit, QT_TR_NOOP("Undo"), QKeySequence::Undo);
    addEditing(edit, QT_TR_NOOP("Redo"), QKeySequence::Redo);
    edit.addSeparator();
    addEditing(edit, QT_TR_NOOP("Cut"), QKeySequence::Cut);
    addEditing(edit, QT_TR_NOOP("Copy"), QKeySequence::Copy);
    addEditing(edit, QT_TR_NOOP("Paste"), QKeySequence::Paste);
    addEditing(edit, QT_TR_NOOP("Select All"), QKeySequence::SelectAll);

    QMenu &windows = *bar.addMenu(tr("Window"));
    windows.addAction(tr("Minimize"), &window, &QWidget::showMinimized);
    windows.addAction(tr("Close"), QKeySequence(QKeySequence::Close), &window, &QWidget::close);
}

} // namespace vesk
