#pragma once

#include <gtest/gtest.h>
#include <openjpeg.h>

#include <cstring>
#include <string>
#include <vector>

/// JPEG 2000 codestreams for the tests, without loss.
namespace ProgramTest {

inline OPJ_SIZE_T AppendBytes(void* bytes, OPJ_SIZE_T size, void* target) {
    static_cast<std::string*>(target)->append(static_cast<const char*>(bytes), size);
    return size;
}

/// Encodes pixels of `channels` samples, row by row. Colour passes the reversible colour transform.
inline std::string Jpeg2000Of(const std::vector<int>& samples, unsigned columns, unsigned rows, unsigned channels,
                              unsigned bits, bool isSigned = false) {
    std::vector<opj_image_cmptparm_t> forms(channels);
    for (opj_image_cmptparm_t& form : forms) {
        form = {};
        form.dx = form.dy = 1;
        form.w = columns;
        form.h = rows;
        form.prec = bits;
        form.sgnd = isSigned;
    }
    opj_image_t* const image =
        opj_image_create(channels, forms.data(), channels == 3 ? OPJ_CLRSPC_SRGB : OPJ_CLRSPC_GRAY);
    image->x1 = columns;
    image->y1 = rows;
    for (std::size_t i = 0; i < samples.size(); ++i) image->comps[i % channels].data[i / channels] = samples[i];
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.tcp_mct = channels == 3;
    parameters.tcp_numlayers = 1;
    parameters.tcp_rates[0] = 0;
    parameters.cp_disto_alloc = 1;
    parameters.numresolution = 1;
    opj_codec_t* const codec = opj_create_compress(OPJ_CODEC_J2K);
    EXPECT_TRUE(opj_setup_encoder(codec, &parameters, image));
    std::string bytes;
    opj_stream_t* const stream = opj_stream_default_create(OPJ_FALSE);
    opj_stream_set_user_data(stream, &bytes, nullptr);
    opj_stream_set_write_function(stream, AppendBytes);
    EXPECT_TRUE(opj_start_compress(codec, image, stream));
    EXPECT_TRUE(opj_encode(codec, stream));
    EXPECT_TRUE(opj_end_compress(codec, stream));
    opj_stream_destroy(stream);
    opj_destroy_codec(codec);
    opj_image_destroy(image);
    return bytes;
}

}  // namespace ProgramTest
