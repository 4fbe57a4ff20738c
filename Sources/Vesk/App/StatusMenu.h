#pragma once

#include <QMenu>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace vesk {

/// The menu of the status item. What it shows is asked for anew at each opening. Main thread.
class StatusMenu {
public:
    /// What is true at the moment, and so which items there are.
    struct State {
        bool needsAccess = false;
        std::optional<QString> configError; ///< why the settings could not be read
        bool hasLastText = false;
        bool canRetry = false;

        friend bool operator==(const State &, const State &) = default;
    };

    /// Whoever knows the state and does what is chosen.
    class Owner {
    public:
        virtual ~Owner() = default;
        /// Called at each opening, before the menu is seen.
        virtual State menuNeedsUpdate() = 0;
        virtual void openSetup() = 0;
        virtual void openMain() = 0;
        virtual void copyLastText() = 0;
        virtual void retryLast() = 0;
        virtual void openSettings() = 0;
        virtual void quit() = 0;
    };

    /// Trays that show menus themselves take an underscore for the sign before an access key.
    enum class Underscores { asTheyAre, doubled };

    /// The owner outlives it. Needs a QApplication.
    explicit StatusMenu(Owner &owner);
    StatusMenu(const StatusMenu &) = delete;
    StatusMenu &operator=(const StatusMenu &) = delete;

    QMenu &menu() { return m_menu; }
    void setUnderscores(Underscores underscores) { m_underscores = underscores; }

    /// Asks the owner and shows what it says.
    void update();

private:
    void add(const QString &text, void (Owner::*action)(), std::function<bool(const State &)> isShown = {});
    void addConfigError();
    void addSeparator(std::function<bool(const State &)> isShown = {});

    struct Item {
        QAction *action = nullptr;                  ///< the menu's
        std::function<bool(const State &)> isShown; ///< empty: always
    };

    Owner &m_owner;
    Underscores m_underscores = Underscores::asTheyAre;
    QMenu m_menu;
    std::vector<Item> m_items;
    QAction *m_configError = nullptr;
};

} // namespace vesk
