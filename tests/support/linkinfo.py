"""A reader of the XML link information for the tests, on Expat: elements as numbers and names, in the shapes that the reader
of the map file has. It fails loudly (ValueError) on a reference that leads nowhere and on an id that is given twice."""
from collections import namedtuple
from xml.parsers import expat

Component = namedtuple("Component", "id name load run size file")  # load None: no data
Group = namedtuple("Group", "id kind name load run size flags display color components groups")
Area = namedtuple("Area", "name page origin length used unused attrs free taken display color")  # free, taken: [(start, size)]
Stub = namedtuple("Stub", "callee callee_address component address calls")  # calls: [(address, component)]
Symbol = namedtuple("Symbol", "id name value component")


class Node:
    def __init__(self, name, attrs):
        self.name, self.attrs, self.text, self.children = name, attrs, "", []

    def all(self, name):
        return [c for c in self.children if c.name == name]

    def get(self, name):
        found = self.all(name)
        return found[0] if found else None

    def str(self, name):
        return self.get(name).text

    def int(self, name):
        found = self.get(name)
        return None if found is None else int(found.text, 16)

    def ref(self, name):
        found = self.get(name)
        return found and found.attrs["idref"]

    def walk(self):
        yield self
        for child in self.children:
            yield from child.walk()


def parse(data):
    """The root element of a document."""
    root = Node("", {})
    open_nodes = [root]

    def start(name, attrs):
        open_nodes[-1].children.append(Node(name, attrs))
        open_nodes.append(open_nodes[-1].children[-1])

    def text(characters):
        open_nodes[-1].text += characters

    parser = expat.ParserCreate()
    parser.StartElementHandler, parser.CharacterDataHandler = start, text
    parser.EndElementHandler = lambda _: open_nodes.pop()
    try:
        parser.Parse(data, True)
    except expat.ExpatError as e:
        raise ValueError(f"no XML document: {e}") from e
    return root.children[0]


class LinkInfo:
    def __init__(self, path):
        top = self.top = parse(path.read_bytes())
        ids = [n.attrs["id"] for n in top.walk() if "id" in n.attrs]
        if len(ids) != len(set(ids)):
            raise ValueError(f"ids that are given twice: {sorted(i for i in set(ids) if ids.count(i) > 1)}")
        lost = {n.attrs["idref"] for n in top.walk() if "idref" in n.attrs} - set(ids)
        if lost:
            raise ValueError(f"references that lead nowhere: {sorted(lost)}")
        entry = top.get("entry_point")
        self.entry = entry and (entry.str("name"), entry.int("address"))
        self.output, self.errors, self.title = top.str("output_file"), top.int("link_errors"), top.str("title")
        self.files = {n.attrs["id"]: self.file(n) for n in top.get("input_file_list").children}
        self.components = {n.attrs["id"]: Component(n.attrs["id"], n.str("name"), n.int("load_address"), n.int("run_address"),
                                                    n.int("size"), n.ref("input_file_ref"))
                           for n in top.get("object_component_list").children}
        self.groups = {n.attrs["id"]: self.group(n) for n in top.get("logical_group_list").children}
        self.areas = [self.area(n) for n in top.get("placement_map").children]
        self.copy_tables = self.tables("cptbl_list", "cprec")
        self.crc_tables = self.tables("crc_table_list", "crc_rec")
        handlers = top.get("handler_table")
        self.handlers = {n.int("index"): n.str("name") for n in handlers.all("handler")} if handlers else {}
        self.veneers = self.stubs("veneer_list", "veneer")
        self.far_calls = self.stubs("far_call_trampoline_list", "trampoline")
        self.stub_counts = top.int("trampoline_count"), top.int("trampoline_call_count")
        table = top.get("symbol_table")
        self.symbols = [Symbol(n.attrs["id"], n.str("name"), n.int("value"), n.ref("object_component_ref"))
                        for n in (table.children if table else [])]

    @staticmethod
    def file(node):
        """(library, file), both base names; (None, None) for what is no object."""
        if not node.get("kind"):
            return None, None
        return (node.str("file") if node.str("kind") == "archive" else None), node.str("name")

    @staticmethod
    def group(node):
        refs = node.get("contents").children
        return Group(node.attrs["id"], node.name, node.str("name"), node.int("load_address"), node.int("run_address"),
                     node.int("size"), node.int("flags"), node.attrs["display"], node.attrs["color"],
                     [r.attrs["idref"] for r in refs if r.name == "object_component_ref"],
                     [r.attrs["idref"] for r in refs if r.name == "logical_group_ref"])

    @staticmethod
    def area(node):
        use = node.get("usage_details")
        return Area(node.str("name"), node.int("page_id"), node.int("origin"), node.int("length"), node.int("used_space"),
                    node.int("unused_space"), node.str("attributes"),
                    [(n.int("start_address"), n.int("size")) for n in use.all("available_space")],
                    [(n.int("start_address"), n.int("size"), n.ref("logical_group_ref")) for n in use.all("allocated_space")],
                    node.attrs["display"], node.attrs["color"])

    def tables(self, name, record):
        """{table: [record as a dictionary of texts and numbers]}"""
        found = self.top.get(name)
        return {t.str("name"): [{c.name: c.text if c.name in ("name", "compression", "alg_name") else int(c.text, 16)
                                 for c in r.children} for r in t.all(record)] for t in (found.children if found else [])}

    def stubs(self, name, word):
        found = self.top.get(name)
        return [Stub(n.str("callee_name"), n.int("callee_addr"), n.ref(f"{word}_object_component_ref"),
                     n.int(f"{word}_address"), [(c.int("caller_address"), c.ref("caller_object_component_ref"))
                                                for c in n.get("caller_list").children])
                for n in (found.children if found else [])]
