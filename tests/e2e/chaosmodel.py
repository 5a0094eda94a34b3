"""What the disks should hold after each thing that a random user does."""
import os
from pathlib import Path

MISSING = object()


def snapshot(root):
    """Relative name and bytes of everything below; folders have no bytes."""
    root = Path(root)
    found = {}
    for folder, _, files in os.walk(root):
        place = Path(folder).relative_to(root)
        if str(place) != ".":
            found[str(place)] = None
        for name in files:
            found[str(place / name)] = (Path(folder) / name).read_bytes()
    return found


def join(folder, name):
    return f"{folder}/{name}" if folder else name


def below(tree, path):
    """The path itself, and all that lies in it."""
    return [item for item in tree if item == path or item.startswith(path + "/")]


def removed(tree, folder, names):
    gone = {item for name in names for item in below(tree, join(folder, name))}
    return {item: content for item, content in tree.items() if item not in gone}


def renamed(tree, folder, old, new):
    source, target = join(folder, old), join(folder, new)
    moved = set(below(tree, source))
    return {target + item[len(source):] if item in moved else item: content
            for item, content in tree.items()}


def copied_file(target, path, content, answer):
    old = target.get(path, MISSING)
    if old is MISSING or not old or answer == "overwrite":
        return {**target, path: content}
    if answer == "resume":
        return {**target, path: old + content[len(old):]}
    return target  # skipped, or never answered


def copied(source, source_folder, target, target_folder, names, answers):
    """The target after a transfer. answers: for a name that was asked about "overwrite", "resume",
    "skip" or ("rename", new name of what was there); names without an answer stay when they conflict."""
    for name in names:
        path, answer = join(target_folder, name), answers.get(name)
        if isinstance(answer, tuple):
            target, answer = renamed(target, target_folder, name, answer[1]), "overwrite"
        origin = join(source_folder, name)
        if source[origin] is not None:
            target = copied_file(target, path, source[origin], answer)
        elif path not in target or answer == "overwrite":
            target = {**target, **{path + item[len(origin):]: source[item]
                                   for item in below(source, origin)}}
    return target


def differences(there, wanted):
    return sorted(item for item in there.keys() | wanted.keys()
                  if there.get(item, MISSING) != wanted.get(item, MISSING))


def moved_aside(target, folder, answers):
    """The target when what was in the way has its new name, and nothing has come yet."""
    for name, answer in answers.items():
        if isinstance(answer, tuple):
            target = renamed(target, folder, name, answer[1])
    return target


def is_tolerated(got, earlier, wanted):
    """After a fault everything is as before, as it should be, or the beginning of that."""
    if got in earlier or got == wanted:
        return True
    return isinstance(got, bytes) and isinstance(wanted, bytes) and wanted.startswith(got)


def damages(there, earlier, wanted):
    """What a fault must not have done. earlier: the trees that were there on the way to the wanted one."""
    items = there.keys() | wanted.keys() | set().union(*earlier)
    return sorted(item for item in items
                  if not is_tolerated(there.get(item, MISSING),
                                      [tree.get(item, MISSING) for tree in earlier],
                                      wanted.get(item, MISSING)))
