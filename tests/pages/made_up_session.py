"""The files of a session whose figures are easy to know. A tick is a millisecond; ten poses a second turn the head left by
ten degrees each and up by five, and reach the runtime after 3 ms; a frame is presented 20 ms after each, and held after 45."""
import json
import math

POSES = 10
MATRIX = ",".join(f"m{row}{column}" for row in range(3) for column in range(4))
RUNTIME = {"mode": "direct", "framesPerSecondDue": 10, "framesRequired": 5, "hapticsSent": 4, "cleanupMs": 12.5}
COMPANION = {"failures": [], "frames": POSES, "matching": POSES, "mismatching": 0, "namedPictures": 12, "haptics": 4,
             "required": {"frames": 5, "matching": 5, "namedPictures": 12, "haptics": 4}}


def matrix(number):
    """The head turned left by ten degrees and up by five for each pose, each at a place of its own."""
    yaw, pitch = math.radians(10 * number), math.radians(5 * number)
    (sy, cy), (sp, cp) = ((math.sin(angle), math.cos(angle)) for angle in (yaw, pitch))
    return f"{cy},{sy * sp},{sy * cp},0,0,{cp},{-sp},1.7,{-sy},{cy * sp},{cy * cp},{0.001 * number}"


def table(head, row, pose=matrix):
    return "\n".join([f"{head},{MATRIX}", *(f"{row(number, 1000 + 100 * number)},{pose(number)}"
                                            for number in range(POSES))]) + "\n"


def write_session(folder, companion=None, pose_beside_frames=True):
    """Before frame 3 two display intervals had none."""
    folder.mkdir()
    (folder / "runtime.json").write_text(json.dumps(RUNTIME))
    (folder / "companion.json").write_text(json.dumps({**COMPANION, **(companion or {})}))
    (folder / "companion_poses.csv").write_text(table("pose,qpc,qpc_frequency", lambda i, at: f"{i},{at},1000"))
    (folder / "runtime_poses.csv").write_text(table("pose,qpc,qpc_frequency", lambda i, at: f"{i},{at + 3},1000"))
    (folder / "runtime_frames.csv").write_text(table(
        "frame,qpc,presented_qpc,render_qpc,pose_qpc,missed",
        lambda i, at: f"{i},{at + 20},{at + 22},{at + 10},{at + 3},{2 if i == 3 else 0}"))
    (folder / "companion_frames.csv").write_text(table(
        "frame,qpc,pose_qpc", lambda i, at: f"{i},{at + 45},{at}",
        matrix if pose_beside_frames else lambda _: ",".join(["0"] * 12)))
    (folder / "contact_sheet.png").write_bytes(b"\x89PNG")
