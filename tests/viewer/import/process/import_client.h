// A client of karv-reader, as a program and as a shared library have one.
#pragma once

/// Reads the model file and returns the model's title, or the error's text where it cannot be read. The text
/// is valid until the next call.
extern "C" __attribute__((visibility("default"))) const char* ImportedTitle(const char* path);
