# SPDX-License-Identifier: MIT
"""Reads the images that gnuplot writes, and the tables of the samples that they show.

A series of an SVG image is a dictionary: "title", "points" (the places of its markers), "line" (the
corners of its line, in order), "area" (the corners of its filled area), all in the coordinates of
the image, and "colors", the set of the colours used.
"""

import re
import struct
import subprocess
import xml.etree.ElementTree as xml

SVG = "{http://www.w3.org/2000/svg}"
HREF = "{http://www.w3.org/1999/xlink}href"
NUMBER = r"-?[0-9.]+"
PAIR = rf"({NUMBER})[ ,]({NUMBER})"


def read_png(path):
    """Returns (width, height, pixels), the pixels as three bytes each, row by row."""
    head = path.read_bytes()[:24]
    if head[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError(f"{path.name} is no PNG image")
    width, height = struct.unpack(">II", head[16:24])
    pixels = subprocess.run(["stream", "-map", "rgb", "-storage-type", "char", path, "-"],
                            stdout=subprocess.PIPE, check=True).stdout
    if len(pixels) != 3 * width * height:
        raise ValueError(f"{path.name} is cut short")
    return width, height, pixels


def pairs(text):
    return [(float(x), float(y)) for x, y in re.findall(PAIR, text)]


def svg_color(text):
    return "#%02X%02X%02X" % tuple(int(part) for part in re.findall(r"\d+", text))


def svg_series(group):
    series = {"title": group.findtext(f"{SVG}title"), "points": [], "line": [], "area": [],
              "colors": set()}
    for element in group.iter():
        if element.tag == f"{SVG}use":
            # Below the middle of an error bar gnuplot clears a white disk.
            if element.get(HREF).startswith("#gpPt") and element.get("color") != "white":
                series["points"] += pairs(element.get("transform"))
                series["colors"].add(svg_color(element.get("color")))
        elif element.tag == f"{SVG}path":
            series["line"] += pairs(element.get("d"))
            series["colors"].add(svg_color(element.get("stroke")))
        elif element.tag == f"{SVG}polygon":
            series["area"] += pairs(element.get("points"))
            series["colors"].add(svg_color(element.get("fill")))
    return series


def read_svg(path):
    """Returns (width, height, list of series, list of texts)."""
    root = xml.parse(path).getroot()
    width, height = (int(word) for word in root.get("viewBox").split()[2:])
    series = [svg_series(group) for group in root.iter(f"{SVG}g")
              if group.get("id", "").startswith("gnuplot_plot_")]
    texts = ["".join(text.itertext()) for text in root.iter(f"{SVG}text")]
    return width, height, series, [text for text in texts if text.strip()]


def eps_size(path):
    """Returns (width, height) in points."""
    text = path.read_text("latin-1")
    if not text.startswith("%!PS-Adobe-") or " EPSF-" not in text.splitlines()[0]:
        raise ValueError(f"{path.name} is no EPS image")
    box = re.search(r"^%%BoundingBox: (\d+) (\d+) (\d+) (\d+)$", text, re.MULTILINE)
    left, bottom, right, top = (int(part) for part in box.groups())
    return right - left, top - bottom


def render(path, image, resolution, finer=1):
    """Lets Ghostscript draw an EPS or a PDF into a PNG image, at that many pixels an inch. It looks
    as on paper, and nothing in it is quite black, if it is made of so many times finer ones."""
    subprocess.run(["gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-dEPSCrop",
                    "-dTextAlphaBits=4", "-dGraphicsAlphaBits=4", f"-r{finer * resolution}",
                    f"-dDownScaleFactor={finer}", "-sDEVICE=png16m", f"-sOutputFile={image}",
                    path], check=True)


def read_sets(path, table):
    """The data sets of one table of a sample, of either layout: label -> (scale, rows)."""
    text = path.read_text("latin-1")
    text = re.split(r"^ Table \d", text, flags=re.MULTILINE)[table]
    parts = re.split(r"^ (?:Set: |Curve: \()(\d+-\d+)", text, flags=re.MULTILINE)
    sets = {}
    for label, body in zip(parts[1::2], parts[2::2]):
        scale = float(re.search(rf"Scale=({NUMBER})", body)[1])
        lines = re.findall(r"^((?: +-?\d+\.\d+){2,})$", body, re.MULTILINE)
        sets[label] = scale, [[float(word) for word in line.split()] for line in lines]
    return sets
