"""The list of faults that change nothing that could be noticed, each with the reason."""


class Equivalents:
    """Lines of faults, as they are reported, then the reason for all of them, indented."""

    def __init__(self, path):
        self.reasons = {}
        self.met = {}
        self.without_reason = []
        pending, reason = [], ""
        for line in [*path.read_text().splitlines(), ""]:
            if line.startswith("#"):
                continue
            if line.startswith(" "):
                reason += line.strip() + " "
                continue
            if reason:
                self.reasons.update((fault, reason.strip()) for fault in pending)
                pending, reason = [], ""
            if line:
                pending.append(line)
        self.without_reason = pending

    def has(self, content):
        return content in self.reasons

    def meet(self, content, verdict):
        self.met[content] = verdict

    def complaints(self, partly):
        """What is wrong with the list; with only a part of the faults tried, what that shows."""
        found = [f"no reason is given for: {fault}" for fault in self.without_reason]
        for fault in self.reasons:
            verdict = self.met.get(fault)
            if verdict is None and not partly:
                found.append(f"listed as changing nothing, but there is no such fault: {fault}")
            elif verdict == "noticed":
                found.append(f"listed as changing nothing, but noticed: {fault}")
            elif verdict == "uncompiled":
                found.append(f"listed as changing nothing, but does not compile: {fault}")
        return found
