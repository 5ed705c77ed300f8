// A window that a user sees, with a model to turn about: the mouse is the control's business, the keys are
// this window's. A key is looked at before it is dispatched, because the control has the focus.
#pragma once

#include "viewer/window/model_window.h"

#include <cstddef>
#include <iosfwd>

namespace viewer
{

class InteractiveWindow : public ModelWindow
{
  public:
    /// Shows the window. `notices` gets what keys report, `errors` what goes wrong; both must outlive the
    /// window.
    InteractiveWindow(PictureSize size, const ViewOptions& options, const Model& model, std::ostream& notices,
                      std::ostream& errors);

    /// Until the user closes it; the window is hidden then.
    [[nodiscard]] bool IsOpen() const { return is_open_; }

    // What keys do.

    /// Shows the whole model from there.
    void ShowFrom(StandardView view);
    /// Keeps the camera.
    void SwitchProjection();
    void SwitchMode();
    void SwitchLights();
    void NextBackground();
    void ResetZoom();
    /// Saves what the viewport shows as the first of karv-view-1.png, karv-view-2.png, ... that is not there
    /// yet, in the current folder, and reports its name, or why it could not.
    void SavePicture();
    /// Reports every key with its meaning.
    void PrintKeys();

    BOOL PreTranslateMessage(MSG* message) override;

  protected:
    [[nodiscard]] const AFX_MSGMAP* GetMessageMap() const override;
    void OnClose();
    /// A view that the user has not turned away from stays fitted.
    void OnViewportResized() override;

  private:
    std::ostream& notices_;
    std::ostream& errors_;
    StandardView view_;
    bool lines_;
    bool lights_off_ = false;
    std::size_t next_background_ = 0;
    bool is_open_ = true;
};

} // namespace viewer
