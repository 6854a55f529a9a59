#pragma once

#include <memory>

class QMenuBar;

namespace nubo {

class ShellController;

/// The commands in the platform's own menu bar (macOS): "Buscar actualizaciones…" in the
/// application menu after its information item, "Escanear de nuevo" (Command-R) and "Subir un
/// nivel" (Command-Up) in the File menu. A menu bar without a parent window becomes the
/// application's menu bar there; the window then carries no menu of its own.
class NativeMenus
{
public:
    explicit NativeMenus(ShellController& shell);
    ~NativeMenus();
    NativeMenus(const NativeMenus&) = delete;
    NativeMenus& operator=(const NativeMenus&) = delete;

private:
    std::unique_ptr<QMenuBar> m_bar;
};

} // namespace nubo
