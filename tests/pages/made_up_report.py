"""A report with one of everything that the page can show; its figures are easy to know."""

PIXEL = ("data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElEQVR4nGP4z8AAAAMBAQDJ/pLvAAAAAElF"
         "TkSuQmCC")

LINES = {
    "kind": "lines", "title": "Yaw", "x": {"label": "time", "unit": "s"}, "y": {"label": "yaw", "unit": "°"},
    "x_values": [0, 1, 2, 3], "marks": [{"at": 1.5, "label": "dropped"}],
    "series": [{"name": "sent", "values": [-60, 0, None, 60]},
               {"name": "at the runtime", "x_values": [0.25, 1.25], "values": [-59.5, 0.5]}]}

# 1 to 100 and one that is far away.
DISTRIBUTION = {
    "kind": "distribution", "title": "Latency", "note": "Measured twice.", "x": {"label": "latency", "unit": "ms"},
    "y": {"label": "poses"}, "series": [{"name": "poses", "values": [*range(100, 0, -1), 5000, None]}]}

REPORT = {
    "title": "A <b>made-up</b> session", "subtitle": "</script><script>console.log('injected')</script>",
    "verdict": "bad",
    "facts": [{"name": "Processor", "value": "two <i>cores</i>"}, {"name": "Memory", "value": None}],
    "verdicts": [
        {"group": "Direct mode", "name": "Frames", "result": "good", "expected": "at least 420", "found": 840},
        {"group": "Direct mode", "name": "Poses", "result": "bad", "expected": "at least 420", "found": 3.14159,
         "meaning": "The head stands still."},
        {"name": "Sharing", "result": "unknown"}],
    "sections": [
        {"title": "Direct mode", "text": "What this is about.", "charts": [LINES, DISTRIBUTION],
         "images": [{"source": PIXEL, "alt": "a room", "caption": "Contact sheet"}]},
        {"title": "Figures", "tables": [{"caption": "All", "head": ["figure", "value"], "rows": [["poses", 1234.567],
                                                                                                ["drops", None]]}]}]}
