#include "Platform/Linux/Keys/TerminalPrograms.h"

#include <algorithm>
#include <string_view>

namespace vesk {

namespace {

// As their windows spell it, in small letters.
constexpr std::string_view Names[] = {
    "alacritty",
    "aterm",
    "blackbox",
    "com.mitchellh.ghostty",
    "com.raggesilver.blackbox",
    "contour",
    "cool-retro-term",
    "deepin-terminal",
    "eterm",
    "foot",
    "ghostty",
    "gnome-terminal",
    "gnome-terminal-server",
    "guake",
    "io.elementary.terminal",
    "kgx",
    "kitty",
    "konsole",
    "koi8rxterm",
    "lilyterm",
    "lxterminal",
    "mate-terminal",
    "mlterm",
    "org.gnome.console",
    "org.gnome.ptyxis",
    "org.gnome.terminal",
    "org.kde.konsole",
    "org.wezfurlong.wezterm",
    "pantheon-terminal",
    "ptyxis",
    "qterminal",
    "roxterm",
    "rxvt",
    "sakura",
    "st",
    "st-256color",
    "stterm",
    "terminator",
    "terminology",
    "termit",
    "tilda",
    "tilix",
    "urxvt",
    "uxterm",
    "wezterm",
    "wezterm-gui",
    "x-terminal-emulator",
    "xfce4-terminal",
    "xterm",
    "yakuake",
};

bool isListed(const QByteArray &name)
{
    const QByteArray small = name.toLower();
    return std::ranges::find(Names, std::string_view(small)) != std::end(Names);
}

} // namespace

bool isTerminal(const QByteArray &instanceName, const QByteArray &className)
{
    return isListed(instanceName) || isListed(className);
}

} // namespace vesk
