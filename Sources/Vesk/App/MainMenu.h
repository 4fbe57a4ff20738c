#pragma once

#include <functional>

class QMainWindow;

namespace vesk {

/// Gives the window the application's menus: "Vesk", "Edit" and "Window". Main thread.
void installMainMenu(QMainWindow &window, std::function<void()> openSettings);

} // namespace vesk
