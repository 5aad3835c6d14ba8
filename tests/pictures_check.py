#!/usr/bin/python3
"""Compares the gray values that the program draws with those that pydicom computes from the same file.

Each case is a DICOM file that this script writes, in one of the forms in which gray values are stored and
described. The program imports it and draws it; the picture in the drawing may differ from the expected one by at
most 1 of 255.

Usage: pictures_check.py OXCLASS
"""
import base64
import io
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
import warnings
from pathlib import Path

import numpy as np
from PIL import Image
from pydicom.dataset import Dataset, FileMetaDataset
from pydicom.encaps import encapsulate
from pydicom.pixel_data_handlers.util import apply_modality_lut, apply_voi_lut
from pydicom.sequence import Sequence
from pydicom.uid import ExplicitVRBigEndian, ExplicitVRLittleEndian, ImplicitVRLittleEndian, JPEG2000, \
    JPEG2000Lossless, RLELossless

OXCLASS = Path(sys.argv[1]).resolve()
ROWS, COLUMNS = 40, 64
warnings.simplefilter("ignore")


def ramp(least, greatest):
    """All values from least to greatest, as far as there are pixels for them, in an order without symmetry."""
    return np.linspace(least, greatest, ROWS * COLUMNS).round().astype(np.int64).reshape(ROWS, COLUMNS)


def lookup(first, bits, values, vr="US"):
    item = Dataset()
    item.add_new(0x00283002, vr, [len(values) % 65536, first, bits])
    item.add_new(0x00283006, "OW", np.asarray(values, "<u2").tobytes())
    return Sequence([item])


class Film(Dataset):
    """A data set of a gray picture. All films of a test are one series."""

    def __init__(self, name, values, bits=12, signed=False, **attributes):
        super().__init__()
        self.name, self.stored_values = name, values
        self.PatientID, self.PatientName, self.Modality = "TEST-GRAY", "Test^Gray", "IO"
        self.SOPClassUID, self.StudyInstanceUID, self.SeriesInstanceUID = "1.2.840.10008.5.1.4.1.1.1.3", "2.25.1", "2.25.2"
        self.Rows, self.Columns = values.shape
        self.SamplesPerPixel, self.PhotometricInterpretation = 1, "MONOCHROME2"
        self.BitsStored, self.HighBit, self.BitsAllocated = bits, bits - 1, 8 if bits <= 8 else 16
        self.PixelRepresentation = int(signed)
        for keyword, value in attributes.items():
            setattr(self, keyword, value)

    def write(self, folder, syntax=ExplicitVRLittleEndian, codestream=None):
        """Writes a file whose name follows those that are in the folder already."""
        number = len(list(folder.iterdir()))
        self.SOPInstanceUID = f"2.25.3.{number}"
        self.file_meta = FileMetaDataset()
        self.file_meta.TransferSyntaxUID = syntax
        self.is_little_endian = syntax != ExplicitVRBigEndian
        self.is_implicit_VR = syntax == ImplicitVRLittleEndian
        kind = f"{'i' if self.PixelRepresentation else 'u'}{self.BitsAllocated // 8}"
        data = self.stored_values.astype(("<" if self.is_little_endian else ">") + kind).tobytes()
        self.PixelData = encapsulate([codestream]) if codestream else data
        self["PixelData"].VR = "OB" if self.BitsAllocated == 8 or codestream else "OW"
        self["PixelData"].is_undefined_length = codestream is not None
        if syntax == RLELossless:
            self.file_meta.TransferSyntaxUID, self.is_implicit_VR = ExplicitVRLittleEndian, False
            self.compress(RLELossless)
        path = folder / f"{number:02}.dcm"
        self.save_as(path, write_like_original=False)
        return path

    def expected(self):
        """What pydicom makes of the stored values, from 0 to 255. It knows neither padding nor a window of its own."""
        values = apply_modality_lut(self.stored_values.copy(), self)
        padding = self.padding()
        if "WindowCenter" in self or "VOILUTSequence" in self:
            shown = apply_voi_lut(values, self)
            least, greatest = self.output_range()
        else:
            shown, least, greatest = values, values[~padding].min(), values[~padding].max()
        part = (shown.astype(float) - least) / (greatest - least)
        shape = self.get("PresentationLUTShape", "INVERSE" if self.PhotometricInterpretation == "MONOCHROME1" else "")
        return np.where(padding, 0, 255 * (1 - part if shape == "INVERSE" else part))

    def padding(self):
        if "PixelPaddingValue" not in self:
            return np.zeros(self.stored_values.shape, bool)
        ends = sorted((self.PixelPaddingValue, self.get("PixelPaddingRangeLimit", self.PixelPaddingValue)))
        return (self.stored_values >= ends[0]) & (self.stored_values <= ends[1])

    def output_range(self):
        """From pydicom's description of apply_voi_lut and apply_windowing: what is black, and what is white."""
        if "VOILUTSequence" in self:
            return 0, 2 ** self.VOILUTSequence[0].LUTDescriptor[2] - 1
        if "ModalityLUTSequence" in self:
            return 0, 2 ** self.ModalityLUTSequence[0].LUTDescriptor[2] - 1
        low = -2 ** (self.BitsStored - 1) if self.PixelRepresentation else 0
        ends = np.array([low, low + 2 ** self.BitsStored - 1], float)
        return ends * float(self.get("RescaleSlope", 1)) + float(self.get("RescaleIntercept", 0))


class Pictures(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.films = self.folder / "films"
        self.films.mkdir()
        os.environ["OXCLASS_DB"] = str(self.folder / "clinic.db")
        self.run_program("init", os.environ["OXCLASS_DB"], "--root", str(self.folder / "images"))

    @staticmethod
    def run_program(*arguments):
        done = subprocess.run([OXCLASS, *arguments], capture_output=True, text=True)
        if done.returncode != 0:
            raise AssertionError(f"{arguments}: {done.returncode}, {done.stderr}")
        return done.stdout

    def oxclass(self, *arguments):
        return json.loads(self.run_program("--json", *arguments))

    def drawn(self, width=8000):
        """Imports the films; returns the pixels that the program puts into a drawing, in the films' order."""
        series = self.oxclass("import", str(self.films))["series"][0]
        drawing = self.folder / "drawing.svg"
        self.run_program("draw", f"SE{series}", "-o", str(drawing), "--width", str(width))
        found = re.findall(r"<title>image (\d+).*?data:image/png;base64,([^\"]*)", drawing.read_text(), re.DOTALL)
        return [np.asarray(Image.open(io.BytesIO(base64.b64decode(png)))).astype(float)
                for _, png in sorted(found, key=lambda picture: int(picture[0]))]

    def check(self, films):
        pictures = self.drawn()
        self.assertEqual(len(films), len(pictures))
        for film, shown in zip(films, pictures):
            with self.subTest(film.name):
                expected = film.expected()
                self.assertEqual(expected.shape, shown.shape)
                self.assertGreater(np.ptp(expected), 100, "the case shows hardly anything")
                self.assertLessEqual(np.abs(shown - expected).max(), 1)

    def each(self, films):
        for film in films:
            film.write(self.films)
        self.check(films)

    def test_forms_of_samples(self):
        self.each([Film("BITS8", ramp(0, 255), 8), Film("BITS10", ramp(3, 1020), 10), Film("BITS12", ramp(0, 4095)),
                   Film("BITS16", ramp(0, 65535), 16), Film("SIGNED8", ramp(-128, 127), 8, True),
                   Film("SIGNED12", ramp(-2048, 2047), 12, True), Film("SIGNED16", ramp(-32768, 32767), 16, True)])

    def test_windows(self):
        self.each([Film("LINEAR", ramp(0, 4095), WindowCenter="2000", WindowWidth="1000"),
                   Film("FIRST-OF-TWO", ramp(0, 4095), WindowCenter=["1500.5", "10"], WindowWidth=["777", "10"]),
                   Film("NARROW", ramp(0, 4095), WindowCenter="1000", WindowWidth="1"),
                   Film("SIGNED", ramp(-2048, 2047), 12, True, WindowCenter="-300", WindowWidth="900"),
                   Film("EXACT", ramp(0, 255), 8, WindowCenter="100", WindowWidth="20",
                        VOILUTFunction="LINEAR_EXACT"),
                   Film("SIGMOID", ramp(0, 4095), WindowCenter="2000", WindowWidth="1000", VOILUTFunction="SIGMOID")])

    def test_lookup_tables(self):
        curve = (np.linspace(0, 1, 4096) ** 0.5 * 65535).round()
        self.each([Film("VOI-LUT", ramp(0, 4095), VOILUTSequence=lookup(0, 16, curve)),
                   Film("VOI-LUT-AND-WINDOW", ramp(0, 4095), VOILUTSequence=lookup(500, 12, np.arange(3000) + 1000),
                        WindowCenter="9", WindowWidth="9"),
                   Film("VOI-LUT-SIGNED", ramp(-2048, 2047), 12, True,
                        VOILUTSequence=lookup(-1000, 10, np.arange(1024), "SS")),
                   Film("MODALITY-LUT", ramp(0, 1023), 10, ModalityLUTSequence=lookup(100, 16, np.arange(800) * 80),
                        WindowCenter="30000", WindowWidth="50000"),
                   Film("MODALITY-LUT-ONLY", ramp(0, 1023), 10,
                        ModalityLUTSequence=lookup(0, 16, 65535 - np.arange(1024) * 60))])

    def test_rescaled_values(self):
        self.each([Film("SLOPE", ramp(0, 4095), RescaleSlope="2.5", RescaleIntercept="-1024", WindowCenter="3000",
                        WindowWidth="4000"),
                   Film("FINE-SLOPE", ramp(0, 4095), RescaleSlope="0.0001", RescaleIntercept="0.5",
                        WindowCenter="0.7", WindowWidth="0.25", VOILUTFunction="LINEAR_EXACT"),
                   Film("FINE-SLOPE-NO-WINDOW", ramp(0, 4095), RescaleSlope="0.0001", RescaleIntercept="0")])

    def test_inversion(self):
        window = {"WindowCenter": "2000", "WindowWidth": "1000"}
        self.each([Film("MONOCHROME1", ramp(0, 4095), PhotometricInterpretation="MONOCHROME1"),
                   Film("MONOCHROME1-WINDOW", ramp(0, 4095), PhotometricInterpretation="MONOCHROME1", **window),
                   Film("SHAPE-INVERSE", ramp(0, 4095), PresentationLUTShape="INVERSE",
                        PhotometricInterpretation="MONOCHROME1", **window),
                   Film("SHAPE-IDENTITY", ramp(0, 4095), PresentationLUTShape="IDENTITY", **window),
                   Film("SHAPE-DECIDES", ramp(0, 4095), PresentationLUTShape="INVERSE", **window)])

    def test_padding(self):
        padded = ramp(1000, 2000)
        padded[:, :10] = 4095
        range_padded = padded.copy()
        range_padded[:, 10:15] = 4000
        signed = ramp(-500, 500)
        signed[:5] = -2000
        self.each([Film("PADDING", padded, PixelPaddingValue=4095),
                   Film("PADDING-RANGE", range_padded, PixelPaddingValue=4095, PixelPaddingRangeLimit=3900),
                   Film("PADDING-INVERTED", padded, PixelPaddingValue=4095, PhotometricInterpretation="MONOCHROME1"),
                   Film("PADDING-WINDOW", padded, PixelPaddingValue=4095, WindowCenter="1500", WindowWidth="500"),
                   Film("PADDING-SIGNED", signed, 12, True, PixelPaddingValue=-2000)])

    def test_transfer_syntaxes(self):
        films = []
        for name, syntax in (("IMPLICIT", ImplicitVRLittleEndian), ("BIG-ENDIAN", ExplicitVRBigEndian),
                             ("RLE", RLELossless), ("JPEG", None), ("JPEG-LS", None)):
            films.append(Film(name, ramp(0, 4095), WindowCenter="2000", WindowWidth="3000"))
            path = films[-1].write(self.films, syntax or ExplicitVRLittleEndian)
            if syntax is None:
                subprocess.run(["dcmcjpeg" if name == "JPEG" else "dcmcjpls", path, path], check=True)
        self.check(films)

    def codestream(self, values, bits, signed):
        raw, packed = self.folder / "samples.raw", self.folder / "samples.j2k"
        raw.write_bytes(values.astype(">" + ("i" if signed else "u") + ("1" if bits <= 8 else "2")).tobytes())
        form = f"{COLUMNS},{ROWS},1,{bits},{'s' if signed else 'u'}"
        subprocess.run(["opj_compress", "-i", raw, "-o", packed, "-F", form], check=True, capture_output=True)
        return packed.read_bytes()

    def test_jpeg_2000(self):
        films = []
        for name, bits, signed in (("J2K-8", 8, False), ("J2K-12", 12, False), ("J2K-16", 16, False),
                                   ("J2K-SIGNED", 12, True)):
            least = -2 ** (bits - 1) if signed else 0
            film = Film(name, ramp(least, least + 2 ** bits - 1), bits, signed,
                        WindowCenter=str(least + 2 ** (bits - 1)), WindowWidth=str(2 ** (bits - 1)))
            film.write(self.films, JPEG2000Lossless, self.codestream(film.stored_values, bits, signed))
            films.append(film)
        self.check(films)

    def test_jpeg_2000_with_loss(self):
        film = Film("J2K-LOSSY", ramp(0, 255), 8)
        packed = io.BytesIO()
        Image.fromarray(film.stored_values.astype("u1")).save(packed, "JPEG2000", no_jp2=True, irreversible=True,
                                                              quality_mode="rates", quality_layers=[4])
        film.write(self.films, JPEG2000, packed.getvalue())
        film.stored_values = np.asarray(Image.open(io.BytesIO(packed.getvalue()))).astype(np.int64)
        self.check([film])

    def test_a_smaller_picture_is_the_mean_of_what_is_shown(self):
        film = Film("SMALLER", np.kron(ramp(0, 4095), np.ones((4, 4), int)) + np.tile([0, 900], (160, 128)), 13,
                    WindowCenter="2000", WindowWidth="1500")
        film.write(self.films)
        slot = self.oxclass("layouts", "9")[0]
        shown, = self.drawn(int(128 / slot["width"]))
        means = film.expected().reshape(80, 2, 128, 2).mean(axis=(1, 3))
        self.assertEqual(means.shape, shown.shape)
        self.assertLessEqual(np.abs(shown - means).max(), 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
