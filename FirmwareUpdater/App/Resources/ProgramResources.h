#pragma once

// Makes the blobs that are linked into the program known to the framework. Once, at the start.
void RegisterProgramResources();
