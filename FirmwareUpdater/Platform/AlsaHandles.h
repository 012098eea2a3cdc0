#pragma once

#include <alsa/asoundlib.h>

#include <memory>
#include <new>

// Owners of what ALSA's library hands out.
namespace Platform {

template <class Type, void (*Free)(Type*)>
struct FreeAlsaWith {
  void operator()(Type* object) const { Free(object); }
};
template <class Type, int (*Close)(Type*)>
struct CloseAlsaWith {
  void operator()(Type* object) const { Close(object); }
};

using AlsaInfo = std::unique_ptr<snd_rawmidi_info_t, FreeAlsaWith<snd_rawmidi_info_t, snd_rawmidi_info_free>>;
using AlsaControl = std::unique_ptr<snd_ctl_t, CloseAlsaWith<snd_ctl_t, snd_ctl_close>>;

inline AlsaInfo MakeAlsaInfo() {
  snd_rawmidi_info_t* info = nullptr;
  if (snd_rawmidi_info_malloc(&info) < 0) throw std::bad_alloc();
  return AlsaInfo(info);
}

}  // namespace Platform
