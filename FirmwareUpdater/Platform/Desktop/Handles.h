#pragma once

#include <cairo.h>
#include <pango/pango.h>
#include <pixman.h>

#include <memory>

namespace Platform {

// Owning pointers to the libraries' objects.
template <auto Release>
struct Releaser {
  template <class T>
  void operator()(T* object) const {
    Release(object);
  }
};

using CairoHandle = std::unique_ptr<cairo_t, Releaser<cairo_destroy>>;
using CairoSurfaceHandle = std::unique_ptr<cairo_surface_t, Releaser<cairo_surface_destroy>>;
using CairoOptionsHandle = std::unique_ptr<cairo_font_options_t, Releaser<cairo_font_options_destroy>>;
using PixmanImageHandle = std::unique_ptr<pixman_image_t, Releaser<pixman_image_unref>>;
template <class T>
using GObjectHandle = std::unique_ptr<T, Releaser<g_object_unref>>;
using FontDescriptionHandle = std::unique_ptr<PangoFontDescription, Releaser<pango_font_description_free>>;

}  // namespace Platform
