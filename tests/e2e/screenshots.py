"""Takes pictures of every screen of the program, for looking at them.

Usage: screenshots.py PROGRAM DRAG_SOURCE ASSISTANT_HOST CERTIFICATE KEY FOLDER [NAME...]

Each set of pictures has a name: `light` and `dark`, with `-1.5` or `-2` for a larger scale and
`-opengl` for the other renderer, and `minimum`, the smallest window. Without names all are taken.
"""

import fnmatch

import sys
import tempfile
from pathlib import Path

from PIL import Image, ImageDraw, ImageFilter

from desktop import Desktop

DESKTOP = Desktop()

from aulora_driver import Program  # noqa: E402  (its bus has to be there first)
from recording_server import RecordingServer  # noqa: E402

QUESTION = "¿Qué pasa en cada fase de la mitosis?"
REPLY = """# La mitosis
La mitosis reparte los cromosomas **duplicados** en dos núcleos iguales. Dura cerca de una hora.

## Las fases
1. **Profase**: la cromatina se condensa y aparece el huso.
2. **Metafase**: los cromosomas se alinean en el ecuador de la célula.
3. **Anafase**: las cromátidas hermanas se separan hacia los polos.
4. **Telofase**: se forman dos núcleos y el huso desaparece.

### Para recordar
- El punto de control de la metafase espera a que **todos** los cinetocoros estén unidos.
- La citocinesis empieza en la anafase y termina después de la telofase.
- Los fármacos antimitóticos, como la vincristina, actúan sobre el huso.

Verificá siempre con la bibliografía de tu cátedra.
"""
# Scripts, directions and signs, on one line; none of it can be typed on this keyboard.
SCRIPTS = "😀 👩‍⚕️ 0123 مرحبا بالعالم שלום 医学 चिकित्सा √x ≥ 5 µg → H₂O Na⁺ ♀♂"
TITLES = ["Ciclo cardíaco y sus ruidos", "Nefrona: filtración y reabsorción",
          "Diferencias entre artropatías", "Gasometría"]


def draw_cells(path, size=(1600, 1100), background="#f6dbe4"):
    """A picture like one through a microscope: round cells with dark nuclei."""
    picture = Image.new("RGB", size, background)
    draw = ImageDraw.Draw(picture)
    for row in range(7):
        for column in range(9):
            x, y = 90 + column * 180 + row % 2 * 80, 80 + row * 160 + column % 3 * 12
            draw.ellipse([x - 82, y - 74, x + 82, y + 74], "#e3a5bf", "#b8668c", 5)
            draw.ellipse([x - 30, y - 26, x + 26, y + 28], "#6b2d73")
    picture.filter(ImageFilter.GaussianBlur(3)).save(path)


class Photographer:
    def __init__(self, executable, drag_source, host, certificate, key, folder):
        self.executable = executable
        self.drag_source = drag_source
        self.assistant = RecordingServer(int(host.rpartition(":")[2]), certificate, key)
        self.folder = Path(folder)

    def take(self, program, name):
        """Takes a picture once the window stands still, or after a while when something turns."""
        path = self.folder / f"{name}.png"
        last = None
        for _ in range(20):
            program.picture(path)
            if path.read_bytes() == last:
                break
            last = path.read_bytes()
        print(path, flush=True)

    def start(self, home, scheme, **environment):
        program = Program(DESKTOP, self.executable, home, environment)
        program.window
        if scheme == "dark":
            program.button("Configuración").press()
            program.element("radio button", "Oscuro").press()
            program.button("Cerrar configuración").press()
            program.wait_for(lambda: not program.elements("button", "Cerrar configuración"),
                             "the sheet to close")
        return program

    def screens(self, scheme, name, size=None, **environment):
        """Every screen in one scheme, at one size."""
        home = tempfile.mkdtemp(prefix="home-", dir=DESKTOP.folder)
        program = self.start(home, scheme, **environment)
        if size:
            DESKTOP.resize(program.window, *size)
            program.wait_for(lambda: DESKTOP.size(program.window) == size, f"the size {size}")
        program.element("button", "Genética")
        self.take(program, f"{name}-home")

        program.ask(QUESTION)
        request = self.assistant.next_request()
        program.wait_for_status("Procesando")
        self.take(program, f"{name}-waiting")
        request.begin()
        lines = REPLY.splitlines(keepends=True)
        request.write("".join(lines[:8]))
        program.wait_for(lambda: "Anafase" in program.messages()[-1], "the first lines")
        self.take(program, f"{name}-streaming")
        request.write("".join(lines[8:]))
        request.finish()
        program.wait_for_status("En línea")
        program.wait_for(lambda: "cátedra" in program.messages()[-1], "the last line")
        self.take(program, f"{name}-chat")

        program.button("Borrar historial").press()
        program.element("dialog", "¿Borrar historial?")
        self.take(program, f"{name}-alert")
        DESKTOP.press("Escape")
        program.wait_for(lambda: not program.elements("dialog"), "the alert to go")

        program.button("Configuración").press()
        program.button("Cerrar configuración")
        self.take(program, f"{name}-settings")
        program.kill()

    def images(self, scheme, name, **environment):
        """An image on its way through the program: dropped, pending, sent, enlarged."""
        home = tempfile.mkdtemp(prefix="home-", dir=DESKTOP.folder)
        program = self.start(home, scheme, **environment)
        picture = DESKTOP.folder / "mucosa gástrica.png"
        draw_cells(picture)

        def take_overlay():
            program.element("label", "Soltá la imagen para analizarla")
            self.take(program, f"{name}-drop")

        x, y = DESKTOP.position(program.window)
        scale = float(environment.get("QT_SCALE_FACTOR", 1))
        point = (round(x + 600 * scale), round(y + 300 * scale))
        DESKTOP.drag_from(self.drag_source, "text/uri-list", picture, point,
                          before_drop=take_overlay)
        program.button("Quitar imagen")
        program.write("¿Qué tejido es?")
        self.take(program, f"{name}-chip")
        DESKTOP.press("Return")
        self.assistant.next_request().answer("Parece **epitelio cilíndrico** simple.\n")
        program.wait_for_status("En línea")
        program.button("Ver imagen adjunta")
        self.take(program, f"{name}-image")
        program.button("Ver imagen adjunta").press()
        program.button("Cerrar imagen")
        self.take(program, f"{name}-viewer")
        program.kill()

    def chooser(self, scheme, name, **environment):
        """The program's own file chooser among pictures of all shapes, and in an empty folder."""
        home = Path(tempfile.mkdtemp(prefix="home-", dir=DESKTOP.folder))
        (home / ".config").mkdir()
        (home / ".config/user-dirs.dirs").write_text(
            'XDG_PICTURES_DIR="$HOME/Imágenes"\nXDG_DOWNLOAD_DIR="$HOME/Descargas"\n'
            'XDG_DESKTOP_DIR="$HOME/Escritorio"\n')
        for folder in ("Descargas", "Escritorio", "Imágenes/Clases de histología",
                       "Imágenes/Parcial"):
            (home / folder).mkdir(parents=True)
        pictures = home / "Imágenes"
        for file, size, color in [
            ("mucosa gástrica.png", (1600, 1100), "#f6dbe4"), ("IMG_0002.JPG", (900, 1600), "#dbe4f6"),
            ("IMG_0010.JPG", (1600, 900), "#e4f6db"), ("panorámica.webp", (2400, 500), "#f6eedb"),
            ("tórax de frente, segunda placa, antes del alta.png", (800, 800), "#cccccc"),
        ]:
            draw_cells(pictures / file, size, color)
        (pictures / "dañada.png").write_bytes(b"no soy una imagen")
        program = self.start(home, scheme, **environment)
        program.button("Adjuntar imagen").press()
        program.element("list item", "mucosa gástrica.png").click()
        self.take(program, f"{name}-chooser")
        DESKTOP.press("Left")
        self.take(program, f"{name}-chooser-keyboard")
        program.element("list item", "Descargas").press()
        program.element("label", "No hay imágenes en esta carpeta.")
        self.take(program, f"{name}-chooser-empty")
        program.kill()

    def details(self, scheme, name, **environment):
        """What shows only for a moment: the keyboard's ring, a selection, a tooltip; and every
        script in each place that shows text."""
        home = tempfile.mkdtemp(prefix="home-", dir=DESKTOP.folder)
        program = self.start(home, scheme, **environment)
        for number, title in enumerate([*TITLES, SCRIPTS]):
            if number:
                program.button("Nueva conversación").press()
            program.write_pasted(title)
            DESKTOP.press("Return")
            self.assistant.next_request().answer(f"{title}\n\n- **{title}**\n")
            program.wait_for_status("En línea")
        program.write_pasted(SCRIPTS)
        program.wait_for(lambda: len(program.messages()) == 2, "the reply")
        self.take(program, f"{name}-scripts")
        DESKTOP.press("ctrl+a")
        self.take(program, f"{name}-selection")
        DESKTOP.press("ctrl+x")
        for step in range(40):
            DESKTOP.press("Tab")
            focused = program.focused()
            if focused and focused.name in ("Nueva conversación", "Borrar historial", "Configuración",
                                            "Adjuntar imagen", "Conversación", SCRIPTS):
                self.take(program, f"{name}-ring-{focused.role}-{focused.name[:6].strip()}")
            if focused and step and focused.role == "text":
                break
        x, y = program.button("Enviar").center
        DESKTOP.move_pointer(x - 3, y)
        DESKTOP.move_pointer(x, y)
        program.element("tool tip", "Enviar")
        self.take(program, f"{name}-tooltip")
        program.kill()

    def sets(self):
        """Every set of pictures by its name."""
        for renderer, suffix in ((("QT_QUICK_BACKEND", "software"), ""),
                                 (("LIBGL_ALWAYS_SOFTWARE", "1"), "-opengl")):
            for scale in ("1", "1.5", "2"):
                for scheme in ("light", "dark"):
                    name = scheme + (f"-{scale}" if scale != "1" else "") + suffix
                    yield name, scheme, None, dict([renderer, ("QT_SCALE_FACTOR", scale)])
        yield "minimum", "light", (940, 700), {"QT_QUICK_BACKEND": "software"}

    def run(self, wanted):
        for name, scheme, size, environment in self.sets():
            if not any(fnmatch.fnmatch(name, pattern) for pattern in wanted or ["*"]):
                continue
            self.screens(scheme, name, size=size, **environment)
            if not size:
                self.images(scheme, name, **environment)
                self.details(scheme, name, **environment)
                self.chooser(scheme, name, **environment)


if __name__ == "__main__":
    try:
        Photographer(*sys.argv[1:7]).run(sys.argv[7:])
    finally:
        DESKTOP.close()
