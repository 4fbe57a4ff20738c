// A Qt window as programs commonly have it: a menu bar above a text field that has the focus. Its title is
// the first argument.

#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QTextEdit>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QMainWindow window;
    QTextEdit text;
    window.setCentralWidget(&text);
    window.menuBar()->addMenu(QStringLiteral("&File"))->addAction(QStringLiteral("&Quit"));
    window.menuBar()->addMenu(QStringLiteral("&Edit"))->addAction(QStringLiteral("&Undo"));
    window.setWindowTitle(application.arguments().value(1));
    window.show();
    text.setFocus();
    return QApplication::exec();
}
