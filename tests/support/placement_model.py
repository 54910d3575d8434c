"""First fit, plain and slow: where a linker that follows the rules of placement puts everything.

The model shares nothing with the linker. It keeps no index and no cache but that of sizes, which is part of the rules; it
walks all contents of a range for each hole, sorts anew, asks for a path in the graph of constraints by a search. Objects
are those of one link without generated sections: sections, output sections, GROUPs and UNIONs.

    model = Model(ranges, roots, options)     ranges: [Range], roots: the entries of SECTIONS as [Obj]
    model.place()
    model.failures                            texts of the reports of what found no room, in their order
"""
import functools

TOP = (1 << 64) - 1
RUN, LOAD, BOTH, ALT = "run", "load", "both", "alternate run"


def up(n, align):
    return (n + align - 1) // align * align


def takes_no_memory(member, collection):
    return collection.allocated and not member.allocated


def stands_aside(sub, loc):
    """Has the sub-item a range of its own?"""
    return sub.virtual and (not loc.virtual or takes_no_memory(sub.obj, loc.obj))


def leave_range_of_its_own(loc):
    rng = loc.range
    if loc.virtual and rng is not None and rng.parent is None and rng.hidden and not rng.temporary and loc in rng.contents:
        rng.contents.remove(loc)
        rng.cut(rng.origin, rng.origin)


class Range:
    def __init__(self, name, origin, length, attrs=15, parent=None):
        self.name, self.origin, self.length, self.attrs, self.parent = name, origin, length, attrs, parent
        self.contents = []  # locators
        self.temporary = self.hidden = False
        self.alias = None  # the first range of a pair of windows, for both

    @property
    def target(self):
        """What takes objects in place of this."""
        return self.alias or self

    @property
    def end(self):
        return min(self.origin + self.length, TOP)

    def trial(self):
        copy = Range(self.name, self.origin, self.length, self.attrs, self)
        copy.temporary, copy.hidden = self.temporary, self.hidden
        return copy

    def cut(self, begin, end):
        self.origin, self.length = begin, end - begin

    def by_address(self):
        return sorted(self.contents, key=lambda l: (l.address, l.end, l.obj.id))

    def unused(self):
        free, cursor = 0, self.origin
        for item in self.by_address():
            if item.address > cursor:
                free += item.address - cursor
            cursor = max(cursor, item.end)
        return free + max(0, self.end - cursor) if self.contents else self.length


class Locator:
    """A wish to be placed, and where it ended."""

    def __init__(self, kind, obj=None):
        self.kind, self.obj = kind, obj
        self.specific = self.attrs = self.priority = None
        self.ranges = []
        self.align = self.block = 0
        self.split = self.overlay = self.ordered = self.high = self.palign = self.power2 = False
        self.virtual = self.failed = self.one_attempt = self.specific_tried = False
        self.placed = self.complete = self.pre_placed = self.split_placed = False
        self.moved = False  # to the first window of a pair
        self.min, self.max = 0, TOP
        self.address = self.end = 0
        self.range = None
        self.subs = []
        self.attempts = 0
        self.available = 0

    def copy(self):
        other = Locator(self.kind, self.obj)
        other.__dict__.update(self.__dict__)
        other.subs, other.ranges = [], list(self.ranges)
        return other

    @property
    def specified(self):
        return self.specific is not None or bool(self.ranges) or self.attrs is not None

    def ignore_placement(self):
        self.specific, self.ranges, self.attrs = None, [], None

    @property
    def in_root(self):
        return self.placed and self.range is not None and self.range.parent is None

    def aligned(self, n):
        return up(n, self.align) if self.align >= 2 else n


class Obj:
    count = 0

    def __init__(self, kind, name, size=0, align=1, data=False, members=()):
        Obj.count += 1
        self.kind, self.name, self.id = kind, name, Obj.count  # section, outsect, spec, dot, GROUP, UNION, LOGICAL
        self.own_size, self.own_align, self.data = size, align, data
        self.members, self.parent = [], None
        self.run = self.load = self.alt = None
        self.cached = None  # size, smallest size
        self.fixed_min = None
        self.init_overlay = self.load_placement = self.chosen = False
        self.anchored = False  # a symbol is its load address
        self.unordered = False
        self.type = None  # COPY, DSECT, NOLOAD
        self.allocated = kind in ("section", "dot")
        for m in members:
            self.add(m)

    def add(self, member):
        self.members.append(member)
        member.parent = self

    @property
    def is_collection(self):
        return self.kind not in ("section", "dot")

    def contains(self, other):
        return any(o is self for o in other.lineage())

    def lineage(self):
        above = self
        while above is not None:
            yield above
            above = above.parent

    def set_locator(self, locator):
        locator.obj = self
        if locator.kind == LOAD:
            self.load = locator
        elif locator.kind == ALT:
            self.alt = locator
        else:
            self.run = locator
            if locator.kind == BOTH:
                self.load = None

    def locator(self, kind):
        return self.load if kind == LOAD else self.alt if kind == ALT else self.run

    # ---- attributes and alignment flow up, data of an output section flows down

    def collect(self):
        if not self.is_collection:
            return
        self.own_align = self.run.align if self.run else 0
        self.data = False
        for m in self.members:
            m.collect()
            self.own_align = max(self.own_align, m.own_align)
            self.data |= m.data
            self.allocated |= m.allocated
            self.init_overlay |= m.init_overlay
            self.load_placement |= m.load_placement
        self.allocated |= self.anchored
        types = {m.type for m in self.members}
        if len(types) == 1 and None not in types:
            self.type = types.pop()
        if self.type in ("COPY", "DSECT"):
            self.allocated = False
        if self.run and self.run.overlay and self.has_load_data():
            self.init_overlay = True
        if self.load and self.load.specified:
            self.load_placement = True
        if self.type in ("DSECT", "NOLOAD"):
            self.data = False

    def spread(self, inside=False):
        inside = inside or self.kind == "outsect"
        for m in self.members:
            m.data |= self.data and inside
            m.allocated |= self.allocated and self.kind != "LOGICAL" and m.type not in ("COPY", "DSECT")
            m.spread(inside)
        self.flush()

    def has_load_data(self):
        if not self.is_collection or self.kind == "outsect":
            return self.data
        return any(m.has_load_data() for m in self.members)

    def has_dot(self):
        return any(m.kind == "dot" or m.has_dot() for m in self.members)

    # ---- size

    def layout_locator(self):
        for l in (self.alt, self.run, self.load):
            if l is not None and (l.placed or l.pre_placed) and not l.split:
                return l
        return None

    def flush(self):
        for obj in self.lineage():
            obj.cached = None

    def sizes(self):
        if not self.is_collection:
            return self.own_size, self.own_size
        if self.cached is None:
            self.cached = self.compute_sizes()
        return self.cached

    def compute_sizes(self):
        layout = self.layout_locator()
        if layout is None and self.run is not None and self.run.placed and self.run.range is not None \
                and self.run.range.name != "VIRTUAL" and self.run.range.alias is None:
            layout = self.run
        if layout is not None:
            return layout.end - layout.address, layout.end - layout.address
        size = least = 0
        for m in self.members:
            if self.allocated and not m.allocated:
                continue
            m_size, m_least = m.sizes()
            if m.run is not None and m.run.align > 0:
                m_size += m.run.align - 1
            if self.kind == "UNION":
                size, least = max(size, m_size), max(least, m_least)
            else:
                size, least = size + m_size, least + m_least
        if self.fixed_min is not None:
            size, least = max(size, self.fixed_min), max(least, self.fixed_min)
        return size, least

    @property
    def size(self):
        return self.sizes()[0]

    @property
    def least(self):
        return self.sizes()[1]

    def upon_placement(self):
        if self.is_collection:
            self.flush()
            self.sizes()


class Model:
    def __init__(self, ranges, roots, alphabetical=False, optimize=True):
        self.ranges = sorted(ranges, key=lambda r: r.origin)
        self.root = Obj("LOGICAL", "<root>", members=roots)
        self.alphabetical, self.optimize = alphabetical, optimize
        self.failures, self.warnings = [], []
        self.worklist = []
        self.is_certain = True  # false: the comparison went in circles, and the order is that of some sort; or a name isn't known

    # ---- before placement

    def place(self):
        self.root.collect()
        self.root.spread()
        for obj in self.root.members:
            self.analyze_object(obj, None, None)
        self.place_worklist()
        self.place_in_both_windows()

    def place_in_both_windows(self):
        for rng in self.ranges:
            if rng.target is not rng:
                for item in rng.target.by_address():
                    self.place_alternate(item, rng)

    def place_alternate(self, item, rng):
        obj = item.obj
        if item.kind in (LOAD, BOTH):
            if obj.size:
                name = rng.name if item.moved else rng.target.name
                self.failures.append(f"ALIAS'ed memory range, {name}, may only be used for run placement and not for load "
                                     f"placement for \"{obj.name}\".")
            return
        other = Locator(ALT, obj)
        other.specific = item.address + rng.origin - rng.target.origin
        if item.moved:
            self.become_alternate(item)
            other.kind, other.moved = RUN, True
        obj.set_locator(other)
        reports = len(self.failures)
        self.place_object(other)
        if len(self.failures) > reports and obj.parent is not self.root:
            self.is_certain = False  # the report names a piece of a split section

    def become_alternate(self, loc):
        if loc.kind in (RUN, BOTH):
            loc.kind, loc.obj.run, loc.obj.alt = ALT, None, loc
            for s in loc.subs:
                self.become_alternate(s)

    def analyze_object(self, obj, enclosing_run, enclosing_load):
        if not obj.is_collection:
            return
        run = obj.run if obj.run and obj.run.specified else None
        load = obj.load if obj.load and obj.load.specified else None
        if not obj.allocated:
            run = obj.run or Locator(BOTH, obj)
            run.virtual = True
            if load:
                load.virtual = True
                if run.specific is None:
                    load.specific = None  # the place where it runs comes first
        elif enclosing_run:
            if run:
                run.ignore_placement()
                run = None
        elif not run:
            kind = RUN if obj.load_placement else BOTH
            run = obj.run or Locator(kind, obj)
            run.kind = kind
        run, load = self.settle_load(obj, run, load, enclosing_run, enclosing_load)
        for l in (run, load):
            if l:
                obj.set_locator(l)
        for l, enclosing in ((run, enclosing_run), (load, enclosing_load)):
            if l and not enclosing:
                self.analyze(l)
                self.worklist.append(l)
        if obj.kind == "outsect":
            return
        members_run = run or enclosing_run
        members_load = load or (run if run and run.kind == BOTH else enclosing_load)
        for m in obj.members:
            self.analyze_object(m, members_run, members_load)

    def settle_load(self, obj, run, load, enclosing_run, enclosing_load):
        def drop():
            if run and run.kind == BOTH:
                run.kind = RUN
            if load:
                load.ignore_placement()
                load.split = False
            return run, None

        own_run = run or obj.run
        if not obj.has_load_data():
            if load:
                obj.sizes()  # asked for: an empty one isn't worth a word
            return drop()
        if own_run and own_run.overlay:
            candidates = [m for m in obj.members if m.has_load_data() and not m.load_placement]
            if len(candidates) == 1:
                candidates[0].chosen = True
            return drop()
        if obj.init_overlay:
            if run and run.kind == BOTH:
                run.kind = RUN
                return run, load
            return drop()
        if enclosing_load and load:
            load.ignore_placement()
            return run, None
        if enclosing_load or obj.load_placement:
            return run, load
        if run:
            if not load and run.kind == RUN:
                run.kind = BOTH
            return run, load
        if not load and enclosing_run and obj.chosen:
            return self.take_over(obj, enclosing_run), None
        if not load:
            load = obj.load or Locator(LOAD, obj)
        return run, load

    @staticmethod
    def take_over(obj, enclosing):
        """The locator of the one member of a UNION that is loaded where it runs: the wishes of the UNION, its own layout."""
        own, run = obj.run, enclosing.copy()
        run.kind = BOTH
        run.overlay, run.ordered, run.palign, run.power2, run.split = own.overlay, own.ordered, own.palign, own.power2, own.split
        run.align, run.block = max(run.align, own.align), own.block
        return run

    def analyze(self, loc):
        if loc.complete:
            return
        obj = loc.obj
        if obj.own_align >= 2:
            loc.align = max(loc.align, obj.own_align)
        if obj.is_collection and obj.has_dot() and not loc.overlay:
            loc.ordered = True
        if loc.specific is not None or loc.high or loc.virtual:
            loc.priority = None
        if loc.split and (loc.virtual or loc.specific is not None or loc.overlay or obj.has_dot() or obj.anchored
                          or loc.palign or loc.power2 or loc.high or not obj.members):
            loc.split = False
        if loc.virtual or loc.specific is not None:
            loc.high = False
        if loc.split:
            loc.ordered = False

    # ---- questions of a locator

    def match(self, loc, rng):
        if loc.specific is not None:
            return rng.origin <= loc.specific < rng.end
        if loc.ranges and rng.name not in loc.ranges:
            return False
        return loc.attrs is None or rng.attrs & loc.attrs == loc.attrs

    def fits(self, loc, rng):
        if not loc.split:
            return loc.obj.least <= rng.unused()
        self.extract(loc)
        return any(not s.complete and self.fits(s, rng) for s in loc.subs)

    def usable(self, loc):
        return [r for r in self.ranges if self.match(loc, r) and self.fits(loc, r)]

    def use_count(self, loc):
        if loc.specific is not None:
            return 1
        return len(self.usable(loc)) if loc.specified else len(self.ranges)

    def contention(self, a, b):
        if any(l.complete or l.virtual or not l.specified for l in (a, b)):
            return 0
        return sum(r.unused() for r in self.usable(a) if r in self.usable(b))

    def competes(self, a, b):
        return not a.specified or not b.specified or self.contention(a, b) != 0

    # ---- order

    def place_worklist(self):
        again = True
        while self.worklist:
            if again:
                self.worklist = self.sorted(self.worklist, True)
            loc = self.worklist.pop(0)
            self.place_object(loc)
            again = not loc.specified \
                or any(r.target is not r for r in self.ranges) or any(self.competes(loc, other) for other in self.worklist)

    def sorted(self, items, use_priorities):
        for l in items:
            l.available = 0
            if not l.complete and not l.virtual and (l.ranges or l.attrs is not None):
                l.available = sum(r.unused() for r in self.usable(l))
            l.obj.sizes()  # asked for now, it stays what it is without the pads of members that are no sub-items yet
        specific = [l for l in items if l.specific is not None]
        virtual = [l for l in items if l.specific is None and l.virtual]
        main = [l for l in items if l.specific is None and not l.virtual]
        main = sorted(main, key=functools.cmp_to_key(self.compare))
        self.is_certain &= all(self.compare(a, b) <= 0 for i, a in enumerate(main) for b in main[i + 1:])
        main = specific + main
        if not self.optimize:
            main = self.without_graph(main)
        elif use_priorities and self.has_constraints(main):
            main = Graph(self, main).order()
        result = main + virtual
        carriers = [l for l in result if l.priority is not None]
        for earlier, later in zip(carriers, carriers[1:]):
            if earlier.priority < later.priority:
                self.warnings.append((later.obj.name, earlier.obj.name))
        return result

    @staticmethod
    def has_constraints(items):
        priorities = [l.priority for l in items if l.priority is not None]
        return len(set(priorities)) > 1 or any(l.kind == RUN and l.obj.data for l in items)

    @staticmethod
    def without_graph(items):
        items = list(items)
        for carrier in sorted((l for l in items if l.priority is not None), key=lambda l: l.priority):
            target = next((l for l in items if l is not carrier and l.priority is not None
                           and l.priority >= carrier.priority), None)
            if target is not None:
                items.remove(carrier)
                items.insert(items.index(target), carrier)
        loads = []
        for l in list(items):
            if l.kind == LOAD:
                loads.append(l)
            if l.kind == RUN:
                before = next((x for x in loads if l.obj.contains(x.obj)), None)
                if before is not None:
                    items.remove(l)
                    items.insert(items.index(before), l)
        return items

    def compare(self, a, b):
        if (a.specific is None) != (b.specific is None):
            return -1 if a.specific is not None else 1
        if a.obj.parent is not None and a.obj.parent is b.obj.parent:
            done_a = a.kind == LOAD and a.obj.run is not None and a.obj.run.complete
            done_b = b.kind == LOAD and b.obj.run is not None and b.obj.run.complete
            if done_a != done_b:
                return -1 if done_a else 1
            if done_a and a.obj.run.address != b.obj.run.address:
                return -1 if a.obj.run.address < b.obj.run.address else 1
        by_name = (a.obj.name > b.obj.name) - (a.obj.name < b.obj.name)
        if self.alphabetical and by_name:
            return by_name
        uses_a, uses_b = self.use_count(a), self.use_count(b)
        if uses_a == 1 and uses_b > 1:
            return -1
        if uses_b == 1 and uses_a > 1:
            return 1
        if bool(a.available) != bool(b.available):
            return -1 if a.available else 1
        size_a, size_b = a.obj.size, b.obj.size
        if a.available and (a.available != b.available or size_a != size_b):
            if (size_a == 0) != (size_b == 0):
                return 1 if size_a == 0 else -1
            if size_a:
                by_room = self.compare_room(a, b, size_a, size_b)
                if by_room:
                    return by_room
        if size_a != size_b:
            return -1 if size_a > size_b else 1
        if by_name:
            return by_name
        late_a, late_b = a.kind == LOAD, b.kind == LOAD
        if late_a != late_b:
            return 1 if late_a else -1
        return a.obj.id - b.obj.id

    def compare_room(self, a, b, size_a, size_b):
        shared = self.contention(a, b)
        min_a, min_b = min(shared, size_a), min(shared, size_b)
        if size_a > a.available - min_b and size_b > b.available - min_a:
            ratio_a, ratio_b = a.available / size_a, b.available / size_b
        else:
            ratio_a = (a.available - min_b) / size_a
            if b.available - min_a == 0:
                return 1 if ratio_a > 0 else 0
            ratio_b = (b.available - min_a) / size_b
        return (ratio_a > ratio_b) - (ratio_a < ratio_b)

    # ---- from the wish to the ranges

    def place_object(self, loc):
        if loc.high:
            self.pre_place_highest(loc)
        tried = [next(r for r in self.ranges if r.name == name) for name in loc.ranges]
        if loc.specific is not None:
            rng = self.range_at(loc.specific)
            if rng is not None and rng.target is not rng and loc.kind in (RUN, BOTH) and not loc.moved:
                loc.specific += rng.target.origin - rng.origin
                loc.moved = True
        if loc.virtual:
            address = loc.specific or 0
            if tried and loc.specific is None and not loc.failed:
                address = max(loc.min, tried[0].target.origin)
            self.place_virtual(loc, address)
            return
        if loc.specific is not None:
            tried = [self.range_at(loc.specific)]
            if tried[0] is None:  # what is empty may stand at the very end of a window, which is no address of the other
                self.is_certain = False
                return
            ok = self.insert(loc, tried[0])
        elif loc.ranges:
            ok = any(self.insert_by_name(loc, r) for r in tried)
        else:
            tried = [r for r in self.ranges if self.match(loc, r)]
            ok = any(self.insert(loc, r) for r in tried)
        if not ok:
            self.fail(loc, tried)

    def range_at(self, address):
        return next((r for r in self.ranges if r.origin <= address < r.end), None)

    def insert_by_name(self, loc, rng):
        parts = self.parts_without_place(loc) if rng.target is not rng else []
        ok = self.insert(loc, rng.target)
        for part in parts:
            part.moved |= part.range is rng.target
        loc.moved |= ok and rng.target is not rng
        return ok

    def parts_without_place(self, loc):
        if not loc.split:
            return [] if loc.complete else [loc]
        self.extract(loc)
        return [part for s in loc.subs for part in self.parts_without_place(s)]

    def fail(self, loc, tried):
        self.failures.append(self.failure_text(loc, tried))
        if loc.split:
            self.mark_split_failed(loc)
        else:
            self.mark_failed(loc)
        loc.virtual = True
        self.reset(loc)
        self.place_object(loc)

    def mark_split_failed(self, loc):
        loc.failed = True
        for s in loc.subs:
            if not s.in_root:
                self.mark_split_failed(s) if s.split else self.mark_failed(s)

    def mark_failed(self, loc):
        leave_range_of_its_own(loc)
        loc.placed = loc.complete = loc.pre_placed = False
        loc.failed, loc.range, loc.attempts, loc.address, loc.end = True, None, 0, 0, 0
        for s in loc.subs:
            self.mark_failed(s)

    def reset(self, loc):
        loc.attempts, loc.one_attempt = 0, False
        loc.obj.upon_placement()
        for s in loc.subs:
            if not s.in_root:
                self.reset(s)

    def place_virtual(self, loc, address):
        """In a range of its own, which then shrinks to what is in it."""
        rng = Range("VIRTUAL", address, TOP - address, attrs=0)
        rng.hidden = True
        self.ranges = sorted(self.ranges + [rng], key=lambda r: (r.hidden, r.origin))
        loc.split &= loc.failed
        loc.high, loc.one_attempt, loc.attempts = False, True, 0
        self.insert(loc, rng)
        begin = min((l.address for l in rng.contents), default=rng.origin)
        rng.cut(begin, max((l.end for l in rng.contents), default=begin))

    def failure_text(self, loc, tried):
        if all(rng.hidden for rng in tried):
            return f"no valid memory range{' with matching attributes' if loc.attrs is not None else ''} available for " \
                   f"placement of \"{loc.obj.name}\""
        last = None
        if loc.specific is not None:
            for rng in tried:
                other = next((l for l in rng.by_address() if l.address <= loc.specific < l.end), None)
                if other is not None:
                    last = f', overlaps with "{other.obj.name}", size {other.obj.size:#x} (page 0)'
                    break
        if last is None:
            last = ". Available memory ranges:"
            for rng in tried:
                if rng.hidden:
                    continue
                last += f" {rng.name} size: {rng.length:#x} unused: {rng.unused():#x} max hole: {self.largest(loc, rng):#x}"
        kind = {RUN: "run ", ALT: "run ", LOAD: "load ", BOTH: ""}[loc.kind]
        above = loc.obj.parent
        aligned = loc.align or loc.block or loc.palign or loc.power2 or (above is not None and above.own_align > 1)
        return f"program will not fit into available memory. {kind}placement {'with alignment ' if aligned else ''}fails " \
               f"for section \"{loc.obj.name}\" size {f'{loc.obj.size:#x}' if loc.obj.size else '0'} {last}"

    def largest(self, loc, rng):
        cursor, largest = rng.origin, 0
        for item in rng.by_address():
            largest = max(largest, item.address - cursor)
            cursor = max(cursor, item.end)
        return max(largest, rng.end - cursor)

    # ---- first fit

    def insert(self, loc, rng):
        trial = rng.trial()
        low, high = max(rng.origin, loc.min), min(rng.end, loc.max)
        if low > high:
            return False

        def attempt(begin, end):
            trial.cut(begin, end)
            return self.attempt(loc, trial)

        above = loc.obj.parent
        overlay = loc.kind != LOAD and above is not None and above.run is not None and above.run.overlay
        size = loc.obj.size
        if size == 0 and not loc.obj.has_dot() and loc.obj.kind != "dot":
            return attempt(low, high)
        items = rng.by_address()
        start, final = (high, low) if loc.high else (low, high)
        for item in reversed(items) if loc.high else items:
            if overlay and (item.obj.parent is above or item.end == item.address):
                continue
            if loc.high:
                begin, end = max(item.end, loc.min), start
            else:
                begin, end = start, min(item.address, loc.max)
            if (begin < end or (begin == end and size == 0)) and attempt(begin, end):
                return True
            start = min(start, item.address) if loc.high else max(start, item.end)
        begin, end = (final, start) if loc.high else (start, final)
        return begin <= end and attempt(begin, end)

    def attempt(self, loc, trial):
        if loc.specific is not None and not trial.origin <= loc.specific < trial.end:
            return False
        if loc.power2:
            self.pre_place_power2(loc)
        if not trial.temporary:
            loc.attempts += 1
        if loc.attempts > 1 and loc.one_attempt:
            return False
        trial.contents = []
        obj = loc.obj
        if obj.is_collection:
            self.extract(loc)
            if loc.attempts <= 1 and (not loc.ordered or (loc.kind == LOAD and obj.run and obj.run.complete)):
                loc.subs = self.sorted(loc.subs, False)
        if loc.split and obj.size == 0:
            loc.split = False
        if loc.split:
            return self.place_blocked_split(loc, trial) if loc.block else self.place_split(loc, trial)
        start = trial.origin
        if loc.specific is not None:
            start, loc.specific_tried = loc.specific, True
        else:
            start = loc.aligned(start)
            if loc.block >= 2:
                boundary = up(start, loc.block)
                if boundary < start + obj.size or loc.block <= obj.size:
                    start = boundary
        if start > trial.end:
            return False
        trial.cut(start, trial.end)
        if obj.is_collection:
            return self.place_duplicate(loc, trial) if obj.layout_locator() else self.place_collection(loc, trial)
        if not self.fit(loc, trial):
            return False
        self.commit(loc, trial.parent)
        return True

    def fit(self, loc, trial):
        size = loc.obj.size
        if size > trial.length:
            return False
        loc.address = trial.origin
        if loc.high:
            address = trial.end - size
            if loc.align >= 2:
                if loc.block and size < loc.align:
                    boundary = (address + size) // loc.align * loc.align
                    if address < boundary:
                        address = boundary - size
                else:
                    address = address // loc.align * loc.align
            loc.address = max(address, trial.origin)
        loc.end = loc.address + size
        return True

    # ---- commit and undo

    def commit(self, loc, rng):
        rng.contents.append(loc)
        self.set_range(loc, rng)
        loc.placed = loc.complete = True
        if rng.parent is None:
            self.commit_final(loc)

    def set_range(self, loc, rng):
        loc.range = rng
        for s in loc.subs:
            if not (stands_aside(s, loc) and s.in_root):
                self.set_range(s, rng)

    def commit_final(self, loc):
        loc.subs.sort(key=lambda l: (l.address, l.end, l.obj.id))
        for s in loc.subs:
            self.commit_final(s)
        loc.obj.upon_placement()

    def uncommit(self, loc):
        leave_range_of_its_own(loc)
        for s in loc.subs:
            if s.placed or not loc.placed:
                self.uncommit(s)
        if loc.placed and loc.range is not None and loc in loc.range.contents:
            loc.range.contents.remove(loc)
        loc.range, loc.placed, loc.complete = None, False, False

    # ---- collections

    def extract(self, loc):
        if loc.subs:
            return
        for m in loc.obj.members:
            if loc.kind == LOAD and loc.split and not m.data:
                continue
            sub = m.locator(loc.kind)
            aside = takes_no_memory(m, loc.obj)
            if sub is None and loc.kind == LOAD and aside:
                continue  # loaded where it runs
            if sub is None:
                sub = Locator(loc.kind, m)
                m.set_locator(sub)
            elif m.allocated and not sub.specified:
                sub.kind = loc.kind
                m.set_locator(sub)
            sub.ignore_placement()
            sub.priority, sub.high, sub.split = None, False, False
            if loc.split and m.is_collection:
                sub.split = True
            sub.virtual |= loc.virtual or aside
            self.analyze(sub)
            loc.subs.append(sub)

    def place_collection(self, loc, trial):
        if loc.obj.least > trial.length:
            return False
        loc.address = loc.end = cursor = trial.origin
        for s in loc.subs:
            if loc.ordered:
                s.min = cursor
            if s.obj.kind == "dot":  # . += n
                loc.specific_tried = True
            if stands_aside(s, loc):
                self.place_aside(s, loc, trial, cursor)
                continue
            if not self.insert(s, trial):
                self.uncommit(loc)
                return False
            cursor = s.end
        self.set_endpoints(loc)
        if loc.specific_tried:
            loc.address = trial.origin
        if trial.end < loc.end:
            self.uncommit(loc)
            return False
        self.commit(loc, trial.parent)
        return True

    def place_aside(self, sub, loc, trial, cursor):
        if trial.temporary:
            rng = Range("TEMP_LAYOUT_RANGE", 0, TOP)
            rng.temporary = rng.hidden = True
            self.insert(sub, rng)
            self.set_range(sub, None)
            return
        place = cursor
        if loc.overlay:
            place = max(trial.origin, loc.min)
        if loc.high:
            place = min(trial.end, loc.max)
        self.place_virtual(sub, place)

    def set_endpoints(self, loc):
        placed = [s for s in loc.subs if s.placed and not stands_aside(s, loc)]
        if placed:
            loc.address, loc.end = min(s.address for s in placed), max(s.end for s in placed)
        if loc.align >= 2:
            loc.address = loc.address // loc.align * loc.align
        if loc.palign:
            loc.end = loc.aligned(loc.end)
        if loc.obj.fixed_min is not None:
            loc.end = max(loc.end, loc.address + loc.obj.fixed_min)

    def place_duplicate(self, loc, trial):
        source = loc.obj.layout_locator()
        origin = source.address
        if not self.fit(loc, trial):
            return False
        self.copy_layout(loc, source, loc.address - origin)
        self.commit(loc, trial.parent)
        return True

    def copy_layout(self, loc, source, delta):
        self.extract(loc)
        for s in loc.subs:
            t = s.obj.locator(source.kind)
            if stands_aside(s, loc):
                if not s.placed:
                    self.place_virtual(s, t.address + delta)
                continue
            s.address = t.address + delta
            s.end = s.address + s.obj.size
            s.placed = s.complete = True
            if s.obj.is_collection:
                self.copy_layout(s, t, delta)

    def pre_layout(self, loc):
        if not loc.obj.is_collection or loc.obj.layout_locator():
            return
        rng = Range("TEMP_LAYOUT_RANGE", 0, TOP)
        rng.temporary = rng.hidden = True
        self.insert(loc, rng)
        self.set_pre_placed(loc)

    def set_pre_placed(self, loc):
        leave_range_of_its_own(loc)
        loc.pre_placed, loc.placed, loc.complete, loc.range = True, False, False, None
        for s in loc.subs:
            self.set_pre_placed(s)

    def pre_place_highest(self, loc):
        loc.high = loc.split = False
        self.pre_layout(loc)
        loc.high = True

    def pre_place_power2(self, loc):
        if not loc.obj.is_collection:
            return
        loc.power2 = False
        self.pre_layout(loc)
        loc.power2 = True
        size = loc.end - loc.address
        if size:
            power = 1
            while power < size:
                power *= 2
            size = power
            loc.obj.fixed_min = size
        if size >= 2:
            loc.align = max(loc.align, size)
            if loc.obj.load:
                loc.obj.load.align = max(loc.obj.load.align, size)
        loc.end = loc.address + size
        loc.obj.flush()
        loc.obj.sizes()

    # ---- split

    def place_split(self, loc, trial):
        start = loc.aligned(trial.origin)
        if start > trial.end:
            return False
        trial.cut(start, trial.end)
        everything = True
        for s in loc.subs:
            if s.complete:
                continue
            s.split_placed = s.high = False
            if s.virtual and not trial.hidden:
                self.place_virtual(s, trial.origin)
                loc.split_placed = True
                continue
            if self.fits(s, trial) and self.insert(s, trial):
                loc.split_placed = True
            else:
                everything = False
                loc.split_placed |= s.split_placed
        if not trial.contents:
            return False
        for item in trial.by_address():
            self.commit(item, trial.parent)
        if everything:
            loc.complete = True
        return everything

    def place_blocked_split(self, loc, trial):
        end = trial.end
        start = window_end = loc.aligned(trial.origin)
        placed = False
        while start < end:
            window_end = min(window_end // loc.block * loc.block + loc.block, end)
            window = trial.parent.trial()
            window.cut(start, window_end)
            loc.split_placed = False
            if self.place_split(loc, window):
                return True
            placed |= loc.split_placed
            if loc.split_placed or start % loc.block:
                start = window_end
            if window_end == end:
                break
        loc.split_placed = placed
        return False


class Graph:
    """Constraints of order between locators: an edge from a to b means a is placed before b."""

    def __init__(self, model, items):
        self.model, self.items = model, items
        self.edges = {id(l): [] for l in items}
        self.in_degree = {id(l): 0 for l in items}
        self.add_constraints()

    def reaches(self, a, b):
        seen, stack = set(), [a]
        while stack:
            node = stack.pop()
            if node is b:
                return True
            if id(node) not in seen:
                seen.add(id(node))
                stack.extend(self.edges[id(node)])
        return False

    def edge(self, a, b):
        if not any(x is b for x in self.edges[id(a)]):
            self.edges[id(a)].append(b)
            self.in_degree[id(b)] += 1

    def edge_unless_reached(self, a, b):
        if not self.reaches(b, a):
            self.edge(a, b)

    def add_constraints(self):
        for run in self.items:
            for load in self.items:
                if run.kind == RUN and load.kind == LOAD and run.obj.contains(load.obj):
                    self.edge_unless_reached(run, load)
        earlier = []
        for item in self.items:
            if item.priority is None:
                continue
            for other in reversed(earlier):
                if item.priority > other.priority:
                    self.edge_unless_reached(item, other)
                elif item.priority < other.priority:
                    self.edge_unless_reached(other, item)
            earlier.append(item)
        for i, a in enumerate(self.items):
            for b in self.items[i + 1:]:
                if not a.specified or not b.specified or self.model.contention(a, b) == 0:
                    continue
                order = self.model.compare(a, b)
                if order < 0:
                    self.edge_unless_reached(a, b)
                elif order > 0:
                    self.edge_unless_reached(b, a)

    def order(self):
        root = None
        for node in self.items:
            if self.in_degree[id(node)]:
                continue
            if root is None:
                root = node
            elif self.model.compare(root, node) < 0:
                self.edge(root, node)
            else:
                self.edge(node, root)
                root = node
        result, done = [], set()

        def visit(node):
            done.add(id(node))
            for target in self.edges[id(node)]:
                if id(target) not in done:
                    visit(target)
            result.insert(0, node)

        visit(root)
        return result
