#include "Platform/AlsaOutputBuffer.h"

#include <sound/asound.h>
#include <sys/ioctl.h>

#include <cerrno>

namespace Platform {

int AwaitWholeOutputBuffer(int descriptor, std::size_t bufferBytes) {
  struct snd_rawmidi_params parameters {};
  parameters.stream = SNDRV_RAWMIDI_STREAM_OUTPUT;
  parameters.buffer_size = bufferBytes;
  parameters.avail_min = bufferBytes;
  parameters.no_active_sensing = 1;
  return ioctl(descriptor, SNDRV_RAWMIDI_IOCTL_PARAMS, &parameters) < 0 ? errno : 0;
}

}  // namespace Platform
