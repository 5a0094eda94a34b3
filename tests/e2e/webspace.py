"""A small web space and a folder to add to it, for the demo and for tests."""
import random
import struct
import zlib
from pathlib import Path


def picture(width, height, colour):
    """A PNG with a soft gradient."""
    rows = b"".join(
        b"\0" + b"".join(bytes(min(255, c * (2 * height - y) // (2 * height) + x * 40 // width)
                               for c in colour) for x in range(width))
        for y in range(height))

    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data
                + struct.pack(">I", zlib.crc32(kind + data)))

    return (b"\x89PNG\r\n\x1a\n"
            + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def page(title, text):
    return ("<!DOCTYPE html>\n<html lang=\"de\">\n<meta charset=\"utf-8\">\n"
            f"<title>{title}</title>\n<h1>{title}</h1>\n<p>{text}</p>\n</html>\n")


def write(path, content):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content if isinstance(content, bytes) else content.encode())


def make_web_space(folder):
    """What is on the server at first."""
    folder = Path(folder)
    write(folder / "index.html", page("Gartenfreunde Sonnental", "Willkommen!"))
    write(folder / "Über uns.html", page("Über uns", "Wir sind 42 Gärtnerinnen und Gärtner."))
    write(folder / "impressum.html", page("Impressum", "Gartenfreunde Sonnental e. V."))
    write(folder / ".htaccess", "Options -Indexes\nErrorDocument 404 /fehler.html\n")
    write(folder / "robots.txt", "User-agent: *\nDisallow: /cgi-bin/\n")
    write(folder / "cgi-bin" / "zähler.cgi",
          "#!/bin/sh\necho 'Content-Type: text/plain'\necho\necho 4711\n")
    (folder / "cgi-bin" / "zähler.cgi").chmod(0o755)
    write(folder / "bilder" / "logo.png", picture(64, 64, (60, 140, 70)))
    write(folder / "bilder" / "Sommerfest 2024" / "Bild 1.png", picture(320, 240, (200, 150, 60)))
    write(folder / "bilder" / "Sommerfest 2024" / "Bild 2 (groß).png", picture(640, 480, (90, 120, 200)))
    write(folder / "bilder" / "Sommerfest 2024" / "leer.txt", "")
    write(folder / "downloads" / "satzung.pdf", random.Random(1).randbytes(180_000))
    (folder / "leerer Ordner").mkdir()


def make_local_folder(folder):
    """What is on the own disk at first."""
    folder = Path(folder)
    write(folder / "Termine für Mai.html", page("Termine für Mai", "Am 1. Mai ist Pflanzentausch."))
    write(folder / "neue Bilder" / "Tulpen.png", picture(480, 320, (210, 60, 90)))
    write(folder / "neue Bilder" / "Äpfel & Birnen.png", picture(400, 300, (120, 190, 60)))
    write(folder / "neue Bilder" / "klein" / "Tulpen.png", picture(96, 64, (210, 60, 90)))
    write(folder / "notizen.txt", "Samen bestellen\n")
