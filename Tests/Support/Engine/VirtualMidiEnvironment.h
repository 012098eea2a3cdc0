#pragma once

#include <string>

// The tests of the engine run over virtual MIDI ports: the MIDI driver of this process looks
// for them in a folder of its own, which is set before the first test.
namespace EngineTest {

// Where the simulated devices of this process make their ports.
std::string MidiFolder();

}  // namespace EngineTest
