// A Qt window with one focused field: vesk_qt_field FIELD TEXT [START END]
// FIELD is area, plain, entry or password; the code units from START to END are selected.

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextEdit>
#include <QVBoxLayout>

namespace {

template <typename Edit>
QWidget *area(const QString &text, int start, int end)
{
    auto *edit = new Edit; // the window's layout owns it
    edit->setPlainText(text);
    edit->setAccessibleName(QStringLiteral("Notes"));
    QTextCursor cursor = edit->textCursor();
    cursor.setPosition(start);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    edit->setTextCursor(cursor);
    return edit;
}

QWidget *entry(const QString &text, int start, int end, QLineEdit::EchoMode mode)
{
    auto *edit = new QLineEdit(text);
    edit->setEchoMode(mode);
    edit->setPlaceholderText(QStringLiteral("Subject"));
    edit->setCursorPosition(start);
    edit->setSelection(start, end - start);
    return edit;
}

QWidget *field(const QStringList &arguments)
{
    const QString kind = arguments.value(1);
    const QString text = arguments.value(2);
    const int start = arguments.value(3).toInt();
    const int end = arguments.value(4).toInt();
    if (kind == u"area") {
        return area<QTextEdit>(text, start, end);
    }
    if (kind == u"plain") {
        return area<QPlainTextEdit>(text, start, end);
    }
    return entry(text, start, end, kind == u"password" ? QLineEdit::Password : QLineEdit::Normal);
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    QWidget window;
    window.setWindowTitle(QStringLiteral("Qt ") + QApplication::arguments().value(1));
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(new QPushButton(QStringLiteral("Other")));
    QWidget *edit = field(QApplication::arguments());
    layout->addWidget(edit);
    window.show();
    // A line edit selects everything when the focus comes for a reason of the person's.
    edit->setFocus(Qt::OtherFocusReason);
    return QApplication::exec();
}
