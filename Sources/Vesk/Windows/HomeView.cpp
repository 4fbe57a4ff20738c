#include "Windows/HomeView.h"

#include "Platform/DesktopServices.h"
#include "Windows/Controls.h"
#include "Windows/CopyText.h"
#include "Windows/DictationDelegate.h"
#include "Windows/EmptyListView.h"
#include "Windows/HistoryModel.h"
#include "Windows/HotkeyNames.h"
#include "Windows/SettingsStore.h"
#include "Windows/SetupModel.h"
#include "Windows/StatusMark.h"

#include <QDate>
#include <QPushButton>
#include <QVBoxLayout>

namespace vesk {

namespace {

constexpr int Recent = 10;

} // namespace

HomeView::HomeView(const WindowServices &services, HistoryModel &history, SetupModel &setup, QWidget *parent)
    : QWidget(parent)
    , m_services(services)
    , m_history(history)
    , m_setup(setup)
    , m_recent(new HistoryFilter(history, this))
    , m_invitation(headline({}, 1.6))
    , m_keys(new HintLabel)
    , m_missingText(new Paragraph)
    , m_missing(missingBox())
    , m_today(new Paragraph)
    , m_list(new EmptyListView)
    , m_copy(new QPushButton(tr("&Copy")))
    , m_message(new HintLabel)
{
    m_recent->setLimit(Recent);
    build();
    const auto followHistory = [this] { showToday(); };
    connect(&history, &QAbstractItemModel::rowsInserted, this, followHistory);
    connect(&history, &QAbstractItemModel::rowsRemoved, this, followHistory);
    connect(&history, &QAbstractItemModel::modelReset, this, followHistory);
    connect(&services.settings, &SettingsStore::changed, this, [this] {
        showKeys();
        showToday();
    });
    connect(&setup, &SetupModel::changed, this, &HomeView::showMissing);
    connect(m_list, &EmptyListView::currentMoved, this, [this] {
        m_copy->setEnabled(m_list->currentIndex().isValid());
        m_message->clear();
    });
    connect(m_list, &QListView::activated, this, &HomeView::copyCurrent);
    connect(m_copy, &QPushButton::clicked, this, &HomeView::copyCurrent);
    showKeys();
    showMissing();
    showToday();
}

void HomeView::build()
{
    m_list->setModel(m_recent);
    m_list->setItemDelegate(new DictationDelegate(*m_recent, m_list));
    m_list->setUniformItemSizes(true);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setAccessibleName(tr("Last dictations"));
    m_copy->setEnabled(false);
    auto *all = new QPushButton(tr("&Show All"));
    connect(all, &QPushButton::clicked, this, &HomeView::historyWanted);

    const int margin = fontMetrics().height();
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(margin, margin, margin, margin);
    column->addWidget(m_invitation);
    column->addWidget(m_keys);
    column->addSpacing(margin / 2);
    column->addWidget(m_missing);
    column->addSpacing(margin / 2);
    column->addWidget(headline(tr("Last dictations"), 1.1));
    column->addWidget(m_today);
    column->addWidget(m_list, 1);
    auto *row = new QHBoxLayout;
    row->addWidget(m_copy);
    row->addWidget(m_message, 1);
    row->addWidget(all);
    column->addLayout(row);
}

QWidget *HomeView::missingBox()
{
    auto *box = new QFrame;
    box->setFrameShape(QFrame::StyledPanel);
    auto *mark = new StatusMark;
    mark->setStatus(StatusMark::Status::missing);
    auto *setUp = new QPushButton(tr("Set &Up…"));
    connect(setUp, &QPushButton::clicked, this, &HomeView::setupWanted);
    auto *row = new QHBoxLayout(box);
    row->addWidget(mark, 0, Qt::AlignTop);
    row->addWidget(m_missingText, 1);
    row->addWidget(setUp, 0, Qt::AlignVCenter);
    return box;
}

void HomeView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_setup.setWatching(true);
    showToday(); // midnight may have passed
    if (!m_list->currentIndex().isValid()) {
        m_list->setCurrentIndex(m_recent->index(0, 0)); // the one that is copied most
    }
}

void HomeView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_setup.setWatching(false);
}

void HomeView::showKeys()
{
    const Config &config = m_services.settings.config();
    m_invitation->setText(tr("Hold %1 and speak").arg(hotkeyLabel(config.dictationKey())));
    QStringList lines = {
        tr("Let go when you have finished. Press it twice to speak hands-free, and once more to end.")};
    if (const auto command = config.commandKey()) {
        lines.append(
            tr("With text selected, hold %1 and say what should become of it.").arg(hotkeyLabel(*command)));
    } else if (hotkeyKey(config.commandHotkey)) {
        lines.append(tr("Same key as dictation, so voice commands are off."));
    }
    m_keys->setText(lines.join(u'\n'));
}

void HomeView::showMissing()
{
    QStringList sentences;
    for (const Requirement &requirement : m_setup.requirements()) {
        if (requirement.state == Requirement::State::missing) {
            sentences.append(requirement.sentence);
        }
    }
    m_missingText->setText(sentences.join(u'\n'));
    m_missing->setVisible(!sentences.isEmpty());
}

void HomeView::showToday()
{
    const HistoryModel::Count today = m_history.countOf(QDate::currentDate());
    const QString words = today.words == 1 ? tr("one word") : tr("%n words", nullptr, today.words);
    m_today->setText(today.dictations == 0 ? tr("Today: none yet")
                         : today.dictations == 1
                         ? tr("Today: one dictation, %1").arg(words)
                         : tr("Today: %n dictations, %1", nullptr, today.dictations).arg(words));
    m_list->setEmptyText(m_services.settings.config().keepHistory
                             ? tr("What you dictate appears here, to be copied again.")
                             : tr("Dictations are not kept. The settings can change that."));
}

void HomeView::copyCurrent()
{
    const QModelIndex index = m_list->currentIndex();
    if (index.isValid()) {
        copyText(m_services.desktop.pasteboard(), m_recent->entry(index).text);
        m_message->setText(tr("Copied."));
    }
}

} // namespace vesk
