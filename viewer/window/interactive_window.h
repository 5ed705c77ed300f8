// A window that a user sees, with a model to look around. The control handles the mouse; this window handles
// the keys, before they are dispatched, because the control has the focus.
#pragma once

#include "viewer/window/model_window.h"

#include <array>
#include <cstddef>
#include <iosfwd>
#include <span>
#include <string_view>
#include <vector>

namespace viewer
{

class InteractiveWindow : public ModelWindow
{
  public:
    /// Shows the window without a model. `notices` gets the reports of keys, `errors` gets failures; both
    /// must outlive the window. Throws as ModelWindow does.
    InteractiveWindow(PictureSize size, const ViewOptions& options, std::ostream& notices,
                      std::ostream& errors);
    /// Shows the window with the model in it.
    InteractiveWindow(PictureSize size, const ViewOptions& options, const Model& model, std::ostream& notices,
                      std::ostream& errors);

    /// Shows a model that contains the one before. It opens as `ModelWindow::OpeningView` says, or
    /// is fitted in the view that the user has chosen by key. If the user has moved the camera over an
    /// earlier model, the camera is kept instead. The model must outlive the window or the next call.
    void Update(const Model& model);

    /// False once the user has closed the window, which is then hidden.
    [[nodiscard]] bool IsOpen() const { return is_open_; }

    /// Runs the command of the key with this character, in either case. Returns false for a character without
    /// a command.
    bool RunKeyCommand(wchar_t character);

    BOOL PreTranslateMessage(MSG* message) override;

  protected:
    [[nodiscard]] const AFX_MSGMAP* GetMessageMap() const override;
    void OnClose();
    /// Fits the model again, unless the user has moved the camera.
    void OnViewportResized() override;

  private:
    struct KeyCommand {
        wchar_t key;              ///< a digit, a sign or a small letter
        std::string_view meaning; ///< half a sentence
        void (*run)(InteractiveWindow& window);
    };

    /// All commands, in the order in which they are explained.
    [[nodiscard]] static std::span<const KeyCommand> KeyCommands();

    /// Shows the whole model from a standard view; the projection stays.
    void ShowFrom(StandardView view);
    /// Shows the whole model; orientation and projection stay.
    void FitAgain();
    /// Keeps the camera if the user has moved it; else fits the model again.
    void SwitchProjection();
    void SwitchMode();
    void SwitchEdges();
    void SwitchLight();
    void NextBackground();
    /// Zooms as the last fit did.
    void ResetZoom();
    /// The first press asks for a second one. The second press in a row ends navigation with the buttons; it
    /// cannot be switched on again.
    void EndNavigation();
    /// Saves what the viewport shows as karv-view-1.png in the current folder, or with the first higher
    /// number whose name is free. Reports the name, or why the picture could not be saved.
    void SavePicture();
    /// Reports every key with its meaning.
    void PrintKeys();

    std::ostream& notices_;
    std::ostream& errors_;
    bool lines_;
    bool edges_;
    Light light_;
    std::vector<std::array<int, 3>> backgrounds_; ///< red, green, blue, 0 to 255
    std::size_t background_ = 0;                  ///< the number of the present one
    wchar_t last_key_ = 0;                        ///< of the command before this one
    bool is_key_held_ = false; ///< the key of the last command is down: repetitions are no presses
    bool is_open_ = true;
    bool has_model_ = false;
    bool is_view_chosen_ = false; ///< the user has chosen a view or a projection by key
};

} // namespace viewer
