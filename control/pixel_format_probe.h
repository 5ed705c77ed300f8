// The probe for a multisampled pixel format, through a window that exists for nothing else.
#pragma once

#include "platform/winsys/winsys.h"

/// Whether a probe of this process found a multisampled pixel format. Shared by all controls: a probe whose
/// queries fail leaves it as it is, so a later control still takes the format that an earlier one found;
/// destroying any control clears it.
extern bool arbMultisampleSupported;

/// The format that the last successful probe found.
extern int arbPixelFormat;

/// The one pixel format descriptor of the viewport: a double-buffered RGBA window, 32 colour bits, at least
/// 16 depth bits.
extern const PIXELFORMATDESCRIPTOR kPixelFormatDescriptor;

/// Asks the driver for a pixel format of 4 samples, then of 2, and remembers what it finds in the two values
/// above. Needs a current context on the window, through which the driver's extensions are looked up. The
/// descriptor is not read. Returns whether a multisampled format is known.
bool ChooseMultisamplePixelFormat(HWND window, PIXELFORMATDESCRIPTOR descriptor);
