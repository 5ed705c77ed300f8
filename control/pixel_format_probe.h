// Finds a multisampled pixel format through a current context.
#pragma once

#include "platform/winsys/winsys.h"

/// Whether a probe in this process has found a multisampled pixel format. All controls share it. A probe
/// whose queries fail does not change it, so a later control uses the format that an earlier one found. A
/// probe that does not find the extension clears it, and so does the destruction of any control.
extern bool arbMultisampleSupported;

/// The format that the last successful probe found. All controls share it.
extern int arbPixelFormat;

/// The pixel format descriptor of the viewport: a double-buffered RGBA window with 32 colour bits and at
/// least 16 depth bits.
extern const PIXELFORMATDESCRIPTOR kPixelFormatDescriptor;

/// Asks the driver for a pixel format with 4 samples, then for one with 2, and stores the result in the two
/// variables above. A context must be current on the window; the driver's extensions are looked up through
/// it. The descriptor is not read. Returns whether a multisampled format is known.
bool ChooseMultisamplePixelFormat(HWND window, PIXELFORMATDESCRIPTOR descriptor);
