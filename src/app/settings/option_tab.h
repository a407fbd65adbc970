#pragma once

/// The tabs of the options dialogs, in their order.
enum class OptionTab { GraphLimits, Alarms, ScanOptions };
