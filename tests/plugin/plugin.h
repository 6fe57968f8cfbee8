#pragma once

/// What the test plug-in and its host agree on: the names and types of its two entries, and the words it throws.

/// "plugin_start": from now on, each unloading adds one to `unloads`.
using plugin_start_entry = void(int * unloads);
/// "plugin_throw": throws the exception class of that name, filled with the words below; "raised" is an `io::exception`
/// that the library throws.
using plugin_throw_entry = void(char const * class_name);

constexpr char const * plugin_message = "message of the plug-in";
constexpr char const * plugin_origin = "plugin";
constexpr int plugin_error = -5;
