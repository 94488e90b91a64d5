"""Renders a frame of a Blender scene with Cycles on the processor, as a PNG picture.

Arguments behind "--": the scene file, the folder of all files of the scene, the picture to write, the number of the
frame, its width and height in pixels, and the number of threads.
"""
import os
import sys

import _cycles
import bpy


def owners_of_paths():
    """Everything in the scene whose properties may name files."""
    for listing in bpy.data.bl_rna.properties:
        if listing.type != "COLLECTION":
            continue
        for block in getattr(bpy.data, listing.identifier):
            yield block
            yield from getattr(getattr(block, "node_tree", None) or block, "nodes", ())
            for modifier in getattr(block, "modifiers", ()):
                yield modifier
                yield from filter(None, [getattr(modifier, "domain_settings", None)])
            editor = getattr(block, "sequence_editor", None)
            yield from editor.sequences_all if editor else ()


def names_file(prop):
    return prop.type == "STRING" and prop.subtype in ("FILE_PATH", "DIR_PATH") and not prop.is_readonly


class Files:
    """The scene's files, which lie in their folder as they lay on the computer that sent them: /tex/a.png is now
    FOLDER/tex/a.png.

    So paths relative to the scene or to a library need no change. Absolute ones always lead into the folder, never to a
    file of this machine.
    """

    def __init__(self, folder):
        self.folder = os.path.realpath(folder)

    def place(self, path):
        """The present path of the file that the scene names by this path."""
        is_relative = path.startswith("//") or not os.path.isabs(path)
        if is_relative or path.startswith(self.folder + os.sep):
            return path
        return self.folder + os.path.normpath(path)

    def find(self):
        self.find_libraries()
        self.find_fonts()
        for owner in list(owners_of_paths()):
            for prop in filter(names_file, owner.bl_rna.properties):
                path = getattr(owner, prop.identifier)
                if self.place(path) != path:
                    setattr(owner, prop.identifier, self.place(path))

    def find_libraries(self):
        # Each library may bring further ones.
        known = set()
        while set(bpy.data.libraries) - known:
            library = (set(bpy.data.libraries) - known).pop()
            known.add(library)
            if self.place(library.filepath) != library.filepath:
                library.filepath = self.place(library.filepath)
                library.reload()

    def find_fonts(self):
        # The file of a font cannot be changed, so another font replaces it.
        for font in list(bpy.data.fonts):
            place = self.place(font.filepath)
            if place != font.filepath and os.path.isfile(place):
                font.user_remap(bpy.data.fonts.load(place))


def open_scene(path):
    # The farm names the scene by a link, but relative paths start at the folder of the file itself.
    bpy.ops.wm.open_mainfile(filepath=os.path.realpath(path), load_ui=False, use_scripts=False)


def leave_out_denoising(scene):
    """Debian's Blender cannot denoise and would fail, although new scenes ask for it."""
    if _cycles.with_openimagedenoise or not scene.cycles.use_denoising:
        return
    print("This Blender has no denoiser (OpenImageDenoise), so the frame is rendered without denoising.", flush=True)
    scene.cycles.use_denoising = False


def set_up(picture, width, height, threads):
    scene = bpy.context.scene
    render = scene.render
    render.engine = "CYCLES"
    scene.cycles.device = "CPU"
    leave_out_denoising(scene)
    render.threads_mode = "FIXED"
    render.threads = threads
    render.resolution_x = width
    render.resolution_y = height
    render.resolution_percentage = 100
    render.image_settings.file_format = "PNG"
    render.filepath = os.path.abspath(picture)
    # File-output nodes are muted: their pictures would be lost, and the renderer may not write elsewhere.
    for node in scene.node_tree.nodes if scene.node_tree else ():
        node.mute = node.mute or node.type == "OUTPUT_FILE"


def scene_frame(scene, frame):
    """The farm's frames begin with 1. Where the scene's begin with 0, they are counted from there."""
    return frame + min(scene.frame_start, 1) - 1


def main(scene, folder, picture, *numbers):
    frame, width, height, threads = map(int, numbers)
    open_scene(scene)
    Files(folder).find()
    set_up(picture, width, height, threads)
    bpy.context.scene.frame_set(scene_frame(bpy.context.scene, frame))
    bpy.ops.render.render(write_still=True)


try:
    main(*sys.argv[sys.argv.index("--") + 1:])
except Exception as error:
    # The farm shows the end of the output. Blender itself would print the whole text of this script there.
    sys.exit(f"The frame could not be rendered: {str(error).strip()}")
