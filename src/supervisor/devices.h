#pragma once

namespace telvane {

class Clock;
class Pause;
class SerialLine;
class SoundPlayer;

// The outside world as the core reaches it: each seam is owned by whoever assembles the
// program (the real ones by main, fakes by a test) and outlives everything using it.
struct Devices
{
    SerialLine &line;
    const Clock &clock;
    Pause &pause;
    SoundPlayer &sound;
};

} // namespace telvane
