#include "console/dicom/DicomPicture.h"

#include "Jpeg2000Encoder.h"
#include "Pixels.h"
#include "kit/Database.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcpixel.h>
#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>
#include <dcmtk/dcmdata/dcrleerg.h>
#include <dcmtk/dcmdata/dctk.h>
#include <dcmtk/dcmjpeg/djencode.h>
#include <dcmtk/dcmjpls/djencode.h>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <map>

/// The picture of a DICOM file.
namespace {

using namespace Console;
using namespace ProgramTest;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

constexpr PixelSpace Large{1000, 1000};

class PictureOfFile : public ::testing::Test {
protected:
    /// Writes a gray file of two pixels by one, and more attributes.
    fs::path Write(
        std::vector<Uint16> values, const std::function<void(DcmDataset&)>& change = [](DcmDataset&) {},
        E_TransferSyntax encoding = EXS_LittleEndianExplicit) {
        DcmFileFormat file;
        DcmDataset& set = *file.getDataset();
        set.putAndInsertString(DCM_SOPClassUID, UID_SecondaryCaptureImageStorage);
        set.putAndInsertString(DCM_SOPInstanceUID, "1.2.3");
        set.putAndInsertUint16(DCM_Rows, 1);
        set.putAndInsertUint16(DCM_Columns, static_cast<Uint16>(values.size()));
        set.putAndInsertUint16(DCM_SamplesPerPixel, 1);
        set.putAndInsertString(DCM_PhotometricInterpretation, "MONOCHROME2");
        set.putAndInsertUint16(DCM_BitsAllocated, 16);
        set.putAndInsertUint16(DCM_BitsStored, 12);
        set.putAndInsertUint16(DCM_HighBit, 11);
        set.putAndInsertUint16(DCM_PixelRepresentation, 0);
        set.putAndInsertUint16Array(DCM_PixelData, values.data(), values.size());
        change(set);
        EXPECT_TRUE(set.chooseRepresentation(encoding, nullptr).good());
        const fs::path path = folder.Path() / "film.dcm";
        EXPECT_TRUE(file.saveFile(path.c_str(), encoding).good());
        return path;
    }

    /// Replaces the pixels of the file by fragments of a compressed picture.
    fs::path WriteFragments(
        const std::vector<std::string>& fragments, E_TransferSyntax encoding,
        const std::function<void(DcmDataset&)>& change = [](DcmDataset&) {}) {
        DcmFileFormat file;
        const fs::path path = Write(std::vector<Uint16>(8), change);
        EXPECT_TRUE(file.loadFile(path.c_str()).good());
        DcmDataset& set = *file.getDataset();
        delete set.remove(DCM_PixelData);
        auto* const sequence = new DcmPixelSequence(DCM_PixelSequenceTag);
        EXPECT_TRUE(sequence->insert(new DcmPixelItem(DCM_PixelItemTag)).good());  // no offsets
        DcmOffsetList offsets;
        for (std::string fragment : fragments)
            sequence->storeCompressedFrame(offsets, reinterpret_cast<Uint8*>(fragment.data()),
                                           static_cast<Uint32>(fragment.size()), 0);
        auto* const pixels = new DcmPixelData(DCM_PixelData);
        pixels->putOriginalRepresentation(encoding, nullptr, sequence);
        EXPECT_TRUE(set.insert(pixels).good());
        EXPECT_TRUE(file.saveFile(path.c_str(), encoding).good());
        return path;
    }

    /// The fragments of the compressed file that `Write` wrote.
    static std::vector<std::string> FragmentsOf(const fs::path& path) {
        DcmFileFormat file;
        EXPECT_TRUE(file.loadFile(path.c_str()).good());
        DcmElement* element = nullptr;
        EXPECT_TRUE(file.getDataset()->findAndGetElement(DCM_PixelData, element).good());
        DcmPixelSequence* sequence = nullptr;
        EXPECT_TRUE(dynamic_cast<DcmPixelData&>(*element)
                        .getEncapsulatedRepresentation(file.getDataset()->getOriginalXfer(), nullptr, sequence)
                        .good());
        std::vector<std::string> fragments;
        for (unsigned long i = 1; i < sequence->card(); ++i) {
            DcmPixelItem* item = nullptr;
            Uint8* bytes = nullptr;
            sequence->getItem(item, i);
            item->getUint8Array(bytes);
            fragments.emplace_back(reinterpret_cast<const char*>(bytes), item->getLength());
        }
        return fragments;
    }

    /// A gray picture of noise, 64 x 64, which no codec can compress.
    static std::vector<Uint16> Noise() {
        std::vector<Uint16> noise(static_cast<std::size_t>(64) * 64);
        unsigned state = 1;
        for (Uint16& value : noise) {
            state = state * 1664525U + 1013904223U;
            value = static_cast<Uint16>(state >> 20);
        }
        return noise;
    }

    static void Square(DcmDataset& set) {
        set.putAndInsertUint16(DCM_Rows, 64);
        set.putAndInsertUint16(DCM_Columns, 64);
    }

    static std::string FailureOf(const fs::path& path) {
        try {
            RenderDicom(path, Large);
        } catch (const std::runtime_error& failure) {
            return failure.what();
        }
        return "none";
    }

    TestKit::TemporaryFolder folder;
};

TEST_F(PictureOfFile, GrayValuesFillTheRangeWithoutAWindow) {
    const Pixels pixels(RenderDicom(Write({100, 200, 300}), Large).png);
    EXPECT_TRUE(pixels.gray);
    EXPECT_EQ(pixels.Gray(0, 0), 0);
    EXPECT_NEAR(pixels.Gray(1, 0), 128, 1);
    EXPECT_EQ(pixels.Gray(2, 0), 255);
}

TEST_F(PictureOfFile, TheFirstWindowOfTheFileIsItsWindow) {
    const Pixels pixels(RenderDicom(Write({0, 1000, 1500, 2000, 4000},
                                          [](DcmDataset& set) {
                                              set.putAndInsertString(DCM_WindowCenter, "1500\\100");
                                              set.putAndInsertString(DCM_WindowWidth, "1000\\10");
                                          }),
                                    Large)
                            .png);
    EXPECT_EQ(pixels.Gray(0, 0), 0);
    EXPECT_EQ(pixels.Gray(1, 0), 0);
    EXPECT_NEAR(pixels.Gray(2, 0), 128, 1);
    EXPECT_EQ(pixels.Gray(4, 0), 255);
}

TEST_F(PictureOfFile, DenseAreasAreLightInEitherInterpretation) {
    const Pixels pixels(RenderDicom(Write({0, 4095},
                                          [](DcmDataset& set) {
                                              set.putAndInsertString(DCM_PhotometricInterpretation, "MONOCHROME1");
                                          }),
                                    Large)
                            .png);
    EXPECT_EQ(pixels.Gray(0, 0), 255);
    EXPECT_EQ(pixels.Gray(1, 0), 0);
}

TEST_F(PictureOfFile, ColourStaysColour) {
    const fs::path path = Write({0}, [](DcmDataset& set) {
        const Uint8 rgb[] = {255, 0, 0, 0, 0, 255};
        set.putAndInsertUint16(DCM_Columns, 2);
        set.putAndInsertUint16(DCM_SamplesPerPixel, 3);
        set.putAndInsertUint16(DCM_PlanarConfiguration, 0);
        set.putAndInsertString(DCM_PhotometricInterpretation, "RGB");
        set.putAndInsertUint16(DCM_BitsAllocated, 8);
        set.putAndInsertUint16(DCM_BitsStored, 8);
        set.putAndInsertUint16(DCM_HighBit, 7);
        set.putAndInsertUint8Array(DCM_PixelData, rgb, 6);
    });
    const Pixels pixels(RenderDicom(path, Large).png);
    EXPECT_FALSE(pixels.gray);
    EXPECT_EQ(pixels.At(0, 0), Red);
    EXPECT_EQ(pixels.At(1, 0), Blue);
}

TEST_F(PictureOfFile, CompressedPixelsAreRead) {
    DJEncoderRegistration::registerCodecs();
    DcmRLEEncoderRegistration::registerCodecs();
    for (const E_TransferSyntax encoding : {EXS_JPEGProcess14SV1, EXS_RLELossless}) {
        const Pixels pixels(RenderDicom(Write(
                                            {0, 4095, 0, 4095}, [](DcmDataset&) {}, encoding),
                                        Large)
                                .png);
        EXPECT_EQ(pixels.Gray(0, 0), 0) << encoding;
        EXPECT_EQ(pixels.Gray(1, 0), 255) << encoding;
    }
}

TEST_F(PictureOfFile, ALargePictureIsReducedInProportion) {
    const fs::path path = Write(std::vector<Uint16>(4000, 7), [](DcmDataset& set) {
        set.putAndInsertUint16(DCM_Rows, 40);
        set.putAndInsertUint16(DCM_Columns, 100);
    });
    const Pixels whole(RenderDicom(path, {100, 100}).png), half(RenderDicom(path, {50, 50}).png);
    EXPECT_EQ(whole.Width(), 100);
    EXPECT_EQ(half.Width(), 50);
    EXPECT_EQ(half.Height(), 20);
}

TEST_F(PictureOfFile, IsReducedToWhatItsSpaceShows) {
    const fs::path path = Write(std::vector<Uint16>(4000, 7), [](DcmDataset& set) {
        set.putAndInsertUint16(DCM_Rows, 100);
        set.putAndInsertUint16(DCM_Columns, 40);
    });
    const Pixels wide(RenderDicom(path, {90, 50}).png), high(RenderDicom(path, {20, 90}).png);
    EXPECT_EQ(wide.Width(), 20);
    EXPECT_EQ(wide.Height(), 50);
    EXPECT_EQ(high.Width(), 20);
    EXPECT_EQ(high.Height(), 50);
    EXPECT_EQ(Pixels(RenderDicom(path, {0, 0}).png).Width(), 1);
}

TEST_F(PictureOfFile, AReducedPixelIsTheMeanOfTheShownGrayValuesOfItsArea) {
    const auto shape = [](DcmDataset& set) {
        set.putAndInsertUint16(DCM_Rows, 4);
        set.putAndInsertUint16(DCM_Columns, 6);
        set.putAndInsertString(DCM_WindowCenter, "500.5");
        set.putAndInsertString(DCM_WindowWidth, "1001");
    };
    // The window shows 1000 and all above it as white; the mean of the stored values would be above it, too.
    const fs::path path = Write({0,    4000, 0,   0,    1000, 1000,  //
                                 4000, 0,    0,   4000, 1000, 4000,  //
                                 0,    0,    500, 500,  4000, 0,     //
                                 0,    0,    500, 500,  0,    0},
                                shape);
    const Pixels pixels(RenderDicom(path, {3, 2}).png);
    ASSERT_EQ(pixels.Width(), 3);
    ASSERT_EQ(pixels.Height(), 2);
    EXPECT_TRUE(pixels.gray);
    const int expected[] = {128, 64, 255, 0, 128, 64};
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(pixels.Gray(i % 3, i / 3), expected[i], 1) << i;
}

TEST_F(PictureOfFile, AReducedPixelHasItsShareOfThePixelsThatItCutsThrough) {
    const fs::path path = Write({0, 3000, 0}, [](DcmDataset& set) {
        set.putAndInsertString(DCM_WindowCenter, "1500.5");
        set.putAndInsertString(DCM_WindowWidth, "3001");
    });
    const Pixels pixels(RenderDicom(path, {2, 2}).png);
    EXPECT_NEAR(pixels.Gray(0, 0), 85, 1);
    EXPECT_NEAR(pixels.Gray(1, 0), 85, 1);
}

TEST_F(PictureOfFile, AFileWithoutAPictureReportsTheReason) {
    std::ofstream(folder.Path() / "text.dcm") << "no film";
    EXPECT_THAT(FailureOf(folder.Path() / "text.dcm"), Not(HasSubstr("none")));
    EXPECT_EQ(FailureOf(Write({0}, [](DcmDataset& set) { delete set.remove(DCM_PixelData); })), "has no pixels");
    EXPECT_EQ(FailureOf(Write({0},
                              [](DcmDataset& set) {
                                  set.putAndInsertUint16(DCM_Rows, 60000);
                                  set.putAndInsertUint16(DCM_Columns, 60000);
                              })),
              "has more than 100 million pixels");
}

// ---- JPEG 2000 --------------------------------------------------------------------------------------

TEST_F(PictureOfFile, Jpeg2000IsDecoded) {
    const std::string codestream = Jpeg2000Of({0, 4095, 0, 2048, 100, 4095, 7, 0}, 8, 1, 1, 12);
    const Pixels pixels(RenderDicom(WriteFragments({codestream}, EXS_JPEG2000LosslessOnly), Large).png);
    EXPECT_TRUE(pixels.gray);
    EXPECT_EQ(pixels.Gray(0, 0), 0);
    EXPECT_EQ(pixels.Gray(1, 0), 255);
    EXPECT_NEAR(pixels.Gray(3, 0), 128, 1);
}

TEST_F(PictureOfFile, Jpeg2000InSeveralFragmentsIsOnePicture) {
    const std::string codestream = Jpeg2000Of({0, 4095, 0, 2048, 100, 4095, 7, 0}, 8, 1, 1, 12);
    const std::size_t half = codestream.size() / 4 * 2;
    const Pixels pixels(
        RenderDicom(WriteFragments({codestream.substr(0, half), codestream.substr(half)}, EXS_JPEG2000LosslessOnly),
                    Large)
            .png);
    EXPECT_EQ(pixels.Gray(1, 0), 255);
}

TEST_F(PictureOfFile, TheFirstOfSeveralJpeg2000FramesIsDrawn) {
    const std::string first = Jpeg2000Of({9, 9, 9, 9, 9, 9, 9, 0}, 8, 1, 1, 12);
    const std::string second = Jpeg2000Of({0, 9, 9, 9, 9, 9, 9, 9}, 8, 1, 1, 12);
    const auto picture =
        RenderDicom(WriteFragments({first.substr(0, 20), first.substr(20), second}, EXS_JPEG2000,
                                   [](DcmDataset& set) { set.putAndInsertString(DCM_NumberOfFrames, "2"); }),
                    Large);
    EXPECT_EQ(picture.frames, 2);
    EXPECT_EQ(Pixels(picture.png).Gray(0, 0), 255);
    EXPECT_EQ(Pixels(picture.png).Gray(7, 0), 0);
}

TEST_F(PictureOfFile, SignedSamplesInAnUnsignedCodestreamStaySigned) {
    const std::string codestream = Jpeg2000Of({4095, 0, 1, 2, 3, 4, 5, 6}, 8, 1, 1, 12);  // -1, 0, 1 ...
    const Pixels pixels(
        RenderDicom(WriteFragments({codestream}, EXS_JPEG2000LosslessOnly,
                                   [](DcmDataset& set) { set.putAndInsertUint16(DCM_PixelRepresentation, 1); }),
                    Large)
            .png);
    EXPECT_EQ(pixels.Gray(0, 0), 0);
    EXPECT_EQ(pixels.Gray(7, 0), 255);
}

TEST_F(PictureOfFile, ColourInJpeg2000IsDecoded) {
    for (const char* form : {"YBR_RCT", "RGB"}) {
        const std::string codestream = Jpeg2000Of({255, 0, 0, 0, 0, 255, 0, 255, 0}, 3, 1, 3, 8);
        const fs::path path = WriteFragments({codestream}, EXS_JPEG2000LosslessOnly, [&](DcmDataset& set) {
            set.putAndInsertUint16(DCM_Columns, 3);
            set.putAndInsertUint16(DCM_SamplesPerPixel, 3);
            set.putAndInsertUint16(DCM_PlanarConfiguration, 0);
            set.putAndInsertString(DCM_PhotometricInterpretation, form);
            set.putAndInsertUint16(DCM_BitsAllocated, 8);
            set.putAndInsertUint16(DCM_BitsStored, 8);
            set.putAndInsertUint16(DCM_HighBit, 7);
        });
        const Pixels pixels(RenderDicom(path, Large).png);
        EXPECT_FALSE(pixels.gray);
        EXPECT_EQ(pixels.At(0, 0), Red) << form;
        EXPECT_EQ(pixels.At(1, 0), Blue) << form;
        EXPECT_EQ(pixels.At(2, 0), Green) << form;
    }
}

TEST_F(PictureOfFile, Jpeg2000OfAnotherSizeThanTheHeaderSaysIsRejected) {
    const std::string codestream = Jpeg2000Of({1, 2, 3, 4}, 4, 1, 1, 12);
    EXPECT_EQ(FailureOf(WriteFragments({codestream}, EXS_JPEG2000)),
              "its JPEG 2000 pixels are not as many as its rows and columns");
}

// ---- colour -----------------------------------------------------------------------------------------

TEST_F(PictureOfFile, CompressedColourStaysColour) {
    DJEncoderRegistration::registerCodecs();
    DcmRLEEncoderRegistration::registerCodecs();
    for (const E_TransferSyntax encoding : {EXS_JPEGProcess1, EXS_RLELossless}) {
        const fs::path path = Write(
            std::vector<Uint16>(1),
            [](DcmDataset& set) {
                std::vector<Uint8> rgb;
                for (int i = 0; i < 16 * 16; ++i)
                    for (const int channel : {255, 0, 0}) rgb.push_back(static_cast<Uint8>(channel));
                set.putAndInsertUint16(DCM_Rows, 16);
                set.putAndInsertUint16(DCM_Columns, 16);
                set.putAndInsertUint16(DCM_SamplesPerPixel, 3);
                set.putAndInsertUint16(DCM_PlanarConfiguration, 0);
                set.putAndInsertString(DCM_PhotometricInterpretation, "RGB");
                set.putAndInsertUint16(DCM_BitsAllocated, 8);
                set.putAndInsertUint16(DCM_BitsStored, 8);
                set.putAndInsertUint16(DCM_HighBit, 7);
                set.putAndInsertUint8Array(DCM_PixelData, rgb.data(), rgb.size());
            },
            encoding);
        const Pixels pixels(RenderDicom(path, Large).png);
        EXPECT_NEAR(pixels.At(5, 5).red, 255, 3) << encoding;
        EXPECT_NEAR(pixels.At(5, 5).green, 0, 3) << encoding;
        EXPECT_NEAR(pixels.At(5, 5).blue, 0, 3) << encoding;
    }
}

// ---- shape and place --------------------------------------------------------------------------------

TEST_F(PictureOfFile, PixelsThatAreNotSquareDefineTheProportionOfThePicture) {
    struct Case {
        DcmTagKey tag;
        const char* value;
        double proportion;
    };
    for (const Case& c : {Case{DCM_PixelSpacing, "0.2\\0.1", 2}, Case{DCM_ImagerPixelSpacing, "0.1\\0.2", 8},
                          Case{DCM_NominalScannedPixelSpacing, "0.1\\0.1", 4}, Case{DCM_PixelAspectRatio, "2\\1", 2},
                          Case{DCM_PixelSpacing, "0.1\\0", 4}, Case{DCM_PixelSpacing, "1\\1000", 4},
                          Case{DCM_PixelSpacing, "-1\\x", 4}}) {
        const fs::path path = Write({1, 2, 3, 4}, [&](DcmDataset& set) { set.putAndInsertString(c.tag, c.value); });
        EXPECT_DOUBLE_EQ(RenderDicom(path, Large).proportion, c.proportion) << c.value;
    }
}

TEST_F(PictureOfFile, ASmallerPictureKeepsItsProportion) {
    const fs::path path = Write(std::vector<Uint16>(4000, 7), [](DcmDataset& set) {
        set.putAndInsertUint16(DCM_Rows, 40);
        set.putAndInsertUint16(DCM_Columns, 100);
        set.putAndInsertString(DCM_PixelSpacing, "0.5\\0.1");
    });
    const auto picture = RenderDicom(path, {30, 30});
    EXPECT_DOUBLE_EQ(picture.proportion, 0.5);
    EXPECT_EQ(Pixels(picture.png).Height(), 30);
    EXPECT_EQ(Pixels(picture.png).Width(), 15);
}

TEST_F(PictureOfFile, APictureThatIsTurnedFitsItsSpaceAfterwards) {
    const fs::path path = Write(std::vector<Uint16>(4000, 7), [](DcmDataset& set) {
        set.putAndInsertUint16(DCM_Rows, 40);
        set.putAndInsertUint16(DCM_Columns, 100);
        set.putAndInsertString(DCM_Modality, "DX");
        set.putAndInsertString(DCM_PatientOrientation, "F\\P");
    });
    const Pixels pixels(RenderDicom(path, {20, 90}).png);
    EXPECT_EQ(pixels.Width(), 20);
    EXPECT_EQ(pixels.Height(), 50);
}

/// The four corners of a picture of 2 x 2 that is stored as 1 2 / 3 4.
class HeadFilm : public PictureOfFile {
protected:
    std::vector<int> Corners(const char* orientation, const char* modality = "DX") {
        const auto picture = RenderDicom(Write({0, 1000, 2000, 3000},
                                               [&](DcmDataset& set) {
                                                   set.putAndInsertUint16(DCM_Rows, 2);
                                                   set.putAndInsertUint16(DCM_Columns, 2);
                                                   set.putAndInsertString(DCM_Modality, modality);
                                                   set.putAndInsertString(DCM_PatientOrientation, orientation);
                                                   set.putAndInsertString(DCM_PixelSpacing, "0.2\\0.1");
                                               }),
                                         Large);
        proportion = picture.proportion;
        const Pixels pixels(picture.png);
        std::vector<int> corners;
        for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}})
            corners.push_back(pixels.Gray(x, y) / 85 + 1);
        return corners;
    }

    double proportion = 0;
};

TEST_F(HeadFilm, IsTurnedUprightWithTheFaceToTheRightOrTheLeftSideOnTheRight) {
    EXPECT_THAT(Corners("A\\F"), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(proportion, 0.5);
    EXPECT_THAT(Corners("F\\P"), ElementsAre(3, 1, 4, 2));  // its rows become columns: turned clockwise
    EXPECT_EQ(proportion, 2);
    EXPECT_THAT(Corners("H\\A"), ElementsAre(2, 4, 1, 3));
    EXPECT_THAT(Corners("P\\H"), ElementsAre(4, 3, 2, 1));
    EXPECT_THAT(Corners("P\\F"), ElementsAre(2, 1, 4, 3));
    EXPECT_THAT(Corners("A\\H"), ElementsAre(3, 4, 1, 2));
    EXPECT_THAT(Corners("F\\A"), ElementsAre(1, 3, 2, 4));
    EXPECT_THAT(Corners("R\\F"), ElementsAre(2, 1, 4, 3));
    EXPECT_THAT(Corners("L\\F", "PX"), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(Corners("FR\\RH"), ElementsAre(3, 1, 4, 2));
}

TEST_F(HeadFilm, IsNotTurnedWithoutAKnownOrientation) {
    for (const char* orientation : {"", "A", "\\F", "A\\", "L\\A", "H\\F", "X\\F", "A\\Q"})
        EXPECT_THAT(Corners(orientation), ElementsAre(1, 2, 3, 4)) << orientation;
}

TEST_F(HeadFilm, AnIntraOralFilmIsNotTurned) { EXPECT_THAT(Corners("F\\P", "IO"), ElementsAre(1, 2, 3, 4)); }

TEST_F(PictureOfFile, TheFirstOfSeveralFramesIsDrawnAndTheirNumberReported) {
    const auto picture = RenderDicom(Write({0, 50, 100, 100, 50, 0},
                                           [](DcmDataset& set) {
                                               set.putAndInsertUint16(DCM_Columns, 3);
                                               set.putAndInsertString(DCM_NumberOfFrames, "2");
                                           }),
                                     Large);
    EXPECT_EQ(picture.frames, 2);
    EXPECT_EQ(Pixels(picture.png).Width(), 3);
    EXPECT_EQ(Pixels(picture.png).Gray(2, 0), 255);
    EXPECT_EQ(RenderDicom(Write({0, 1}), Large).frames, 1);
}

// ---- what can't be rendered -------------------------------------------------------------------------

TEST_F(PictureOfFile, PixelsThatAreCutShortAreRejected) {
    EXPECT_EQ(FailureOf(Write({1, 2, 3}, [](DcmDataset& set) { set.putAndInsertUint16(DCM_Rows, 2); })),
              "its pixels are cut short: fewer than its rows and columns need");
    EXPECT_EQ(FailureOf(Write({1, 2, 3},
                              [](DcmDataset& set) {
                                  set.putAndInsertUint16(DCM_SamplesPerPixel, 3);
                                  set.putAndInsertString(DCM_PhotometricInterpretation, "RGB");
                              })),
              "its pixels are cut short: fewer than its rows and columns need");
}

TEST_F(PictureOfFile, SamplesOfNoPossibleFormAreRejected) {
    struct Form {
        Uint16 allocated, stored, high;
    };
    for (const Form& form :
         {Form{16, 12, 5}, {16, 0, 0}, {16, 17, 16}, {16, 12, 16}, {1, 1, 0}, {32, 32, 31}, {0, 0, 0}}) {
        const fs::path path = Write(std::vector<Uint16>(8), [&](DcmDataset& set) {
            set.putAndInsertUint16(DCM_Columns, 2);
            set.putAndInsertUint16(DCM_BitsAllocated, form.allocated);
            set.putAndInsertUint16(DCM_BitsStored, form.stored);
            set.putAndInsertUint16(DCM_HighBit, form.high);
        });
        EXPECT_NE(FailureOf(path), "none") << form.allocated << " " << form.stored << " " << form.high;
    }
}

TEST_F(PictureOfFile, DamagedCompressedPixelsAreRejectedAndNotDrawnAsNoise) {
    DJEncoderRegistration::registerCodecs();
    DJLSEncoderRegistration::registerCodecs();
    DcmRLEEncoderRegistration::registerCodecs();
    const auto noise = Noise();
    std::map<E_TransferSyntax, std::string> codestreams;
    for (const E_TransferSyntax encoding :
         {EXS_JPEGProcess14SV1, EXS_JPEGProcess2_4, EXS_JPEGLSLossless, EXS_RLELossless})
        codestreams[encoding] = FragmentsOf(Write(noise, Square, encoding)).at(0);
    codestreams[EXS_JPEG2000LosslessOnly] = Jpeg2000Of({noise.begin(), noise.end()}, 64, 64, 1, 12);
    for (const auto& [encoding, codestream] : codestreams) {
        EXPECT_EQ(FailureOf(WriteFragments({codestream}, encoding, Square)), "none") << encoding;
        for (const std::size_t part : {0, 1, 10, 50, 90, 99}) {
            const std::string cut = codestream.substr(0, codestream.size() * part / 100);
            EXPECT_NE(FailureOf(WriteFragments({cut}, encoding, Square)), "none") << encoding << " at " << part;
        }
        // Here damage within the bits of a codestream still decodes.
        if (encoding == EXS_RLELossless || encoding == EXS_JPEG2000LosslessOnly) continue;
        std::string blank = codestream;
        for (std::size_t i = blank.size() / 2; i + 2 < blank.size(); ++i) blank[i] = '\xFF';
        EXPECT_NE(FailureOf(WriteFragments({blank}, encoding, Square)), "none") << encoding << " blanked";
    }
}

TEST_F(PictureOfFile, Jpeg2000ThatItsDecoderOnlyWarnsOfIsRejected) {
    const auto noise = Noise();
    std::string codestream = Jpeg2000Of({noise.begin(), noise.end()}, 64, 64, 1, 12);
    const std::size_t quantization = codestream.find("\xFF\x5C");
    ASSERT_NE(quantization, std::string::npos);
    codestream[quantization + 3] = static_cast<char>(~codestream[quantization + 3]);  // its length
    EXPECT_THAT(FailureOf(WriteFragments({codestream}, EXS_JPEG2000, Square)),
                HasSubstr("its JPEG 2000 pixels are damaged: While reading"));
}

TEST_F(PictureOfFile, AnUnknownMarkerIsNotReportedAsDamage) {
    std::string codestream = Jpeg2000Of({0, 4095, 0, 2048, 100, 4095, 7, 0}, 8, 1, 1, 12);
    const std::size_t comment = codestream.find("\xFF\x64");
    ASSERT_NE(comment, std::string::npos);
    codestream.insert(comment, std::string("\xFF\x6F\0\x02", 4));
    EXPECT_EQ(FailureOf(WriteFragments({codestream}, EXS_JPEG2000)), "none");
}

TEST_F(PictureOfFile, AnyDamageOfAFileIsAPictureOrARejection) {
    const auto sample = [](DcmDataset& set) {
        DcmItem* item = nullptr;
        const Uint16 descriptor[] = {4, 0, 12}, data[] = {0, 1000, 2000, 4095};
        set.findOrCreateSequenceItem(DCM_VOILUTSequence, item);
        item->putAndInsertUint16Array(DCM_LUTDescriptor, descriptor, 3);
        item->putAndInsertUint16Array(DCM_LUTData, data, 4);
        set.putAndInsertUint16(DCM_PixelPaddingValue, 3);
        set.putAndInsertString(DCM_RescaleSlope, "1.5");
        set.putAndInsertString(DCM_RescaleIntercept, "1");
    };
    const std::string codestream = Jpeg2000Of({1, 2, 3, 4, 5, 6, 7, 8}, 8, 1, 1, 12);
    for (const fs::path& path : {Write({1, 2, 3, 4}, sample), WriteFragments({codestream}, EXS_JPEG2000, sample)}) {
        std::ifstream in(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        for (std::size_t i = 132; i < bytes.size(); i += 13) {
            std::string damaged = bytes;
            damaged[i] = static_cast<char>(~damaged[i]);
            for (const std::string& tried : {damaged, bytes.substr(0, i)}) {
                std::ofstream(folder.Path() / "damaged.dcm", std::ios::binary | std::ios::trunc) << tried;
                EXPECT_NE(FailureOf(folder.Path() / "damaged.dcm"), "");
            }
        }
    }
}

TEST_F(PictureOfFile, TheReasonForAMissingPictureIsReported) {
    EXPECT_EQ(WhyNoPicture(Write({1, 2})), "");
    EXPECT_EQ(WhyNoPicture(Write({1}, [](DcmDataset& set) { set.putAndInsertUint16(DCM_Rows, 2); })),
              "its pixels are cut short: fewer than its rows and columns need");
    const fs::path film = WriteFragments({std::string(100, '\0')}, EXS_MPEG4HighProfileLevel4_1);
    EXPECT_THAT(WhyNoPicture(film), HasSubstr("can't be decoded"));
    EXPECT_THAT(WhyNoPicture(film), HasSubstr("1.2.840.10008.1.2.4.102"));
    EXPECT_EQ(WhyNoPictureQuickly(film), WhyNoPicture(film));
    EXPECT_EQ(WhyNoPictureQuickly(Write({1, 2})), "");
    const fs::path damaged = WriteFragments({""}, EXS_JPEG2000);
    EXPECT_NE(WhyNoPictureQuickly(damaged), "");
    EXPECT_EQ(WhyNoPictureQuickly(damaged), WhyNoPicture(damaged));
}

}  // namespace
