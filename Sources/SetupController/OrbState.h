#pragma once

/// What is known of OrbStack. `running` is the one state in which machines, runs and containers are offered.
enum class OrbState { checking, notInstalled, stopped, starting, running };
