// Rotations as quaternions [x, y, z, w], in the room's axes: x to the right, y up, z backwards. Angles in radians.

export const radians = (degrees) => (degrees * Math.PI) / 180;

export function multiply([px, py, pz, pw], [qx, qy, qz, qw]) {
  return [
    pw * qx + px * qw + py * qz - pz * qy,
    pw * qy + py * qw + pz * qx - px * qz,
    pw * qz + pz * qw + px * qy - py * qx,
    pw * qw - px * qx - py * qy - pz * qz,
  ];
}

export const aboutX = (angle) => [Math.sin(angle / 2), 0, 0, Math.cos(angle / 2)];
export const aboutY = (angle) => [0, Math.sin(angle / 2), 0, Math.cos(angle / 2)];
export const aboutZ = (angle) => [0, 0, Math.sin(angle / 2), Math.cos(angle / 2)];

// The standard's axes of the earth are x east, y north, z up; the room's y is up, and north lies straight ahead.
const earthToRoom = aboutX(radians(-90));

// The head of someone who looks into the screen, from the angles of a deviceorientation event in degrees: the standard
// turns the device about its z by alpha, then its x by beta, then its y by gamma. What is shown is turned against the
// device by the screen's angle, and the head is upright where the picture is.
export function headOfDevice({ alpha, beta, gamma }, screenAngle) {
  const device = multiply(multiply(aboutZ(radians(alpha)), aboutX(radians(beta))), aboutY(radians(gamma)));
  return multiply(multiply(earthToRoom, device), aboutZ(radians(-screenAngle)));
}
