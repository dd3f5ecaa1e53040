#pragma once

/// Timing of a move of one coordinate that starts at a given velocity and ends at rest, with bounded
/// acceleration and velocity.
///
/// The coordinate may be a length or an angle: with lengths in metres, distance is in m, velocity in m/s and
/// acceleration in m/s^2. Distance and velocity are signed. In the formulas below
///
///     a = speedFactor acceleration,  m = speedFactor maxVelocity,  v = initialVelocity,
///     d = distance,  D = |d|,  s = v^2 / (2 a), the way that stopping from v takes.
///
/// Both calculations take it that |v| <= m.
class NqTrapezoidalProfileTool {
public:
    /// Acceleration, velocity limit and speed factor of 1, starting from rest.
    NqTrapezoidalProfileTool();

    /// Sets the limits, unscaled and above 0, and the velocity at the start, of any sign. False, with nothing
    /// changed, where a limit is 0 or less. The speed factor stays.
    bool setParameters(double acceleration, double maxVelocity, double initialVelocity);

    /// A value that isn't above 0 is ignored.
    void setAcceleration(double acceleration);
    void setMaxVelocity(double maxVelocity);

    /// The factor on both limits; a value that isn't above 0 is ignored.
    void setSpeedFactor(double factor);

    void setInitialVelocity(double velocity) { m_InitialVelocity = velocity; }

    /// The shortest time (s) for a move over `distance`. True always.
    ///
    /// Starting towards the target, at rest, or over no distance:
    ///
    ///     s >= D, the stop reaches or passes the target:  2 sqrt((s - D) / a) + |v| / a
    ///     m^2 / a - s >= D, the velocity m isn't passed:  (2 sqrt((s + D) a) - |v|) / a
    ///     else, with a cruise at m:                       (2 m - |v|) / a + (D - (m^2 / a - s)) / m
    ///
    /// Starting away from the target, with w = s + D the way back from where the coordinate comes to rest:
    ///
    ///     m^2 / a >= w, the velocity m isn't passed:      2 sqrt(w / a) + |v| / a
    ///     else, with a cruise at m:                       (2 m - |v|) / a + |v| / a + (w - m^2 / a) / m
    ///
    /// The last one leaves out the time |v| / a of stopping first, so it is a lower bound that a move
    /// exceeds.
    bool computeMinimumTime(double distance, double& time) const;

    /// The signed velocity to cruise at so that the move over `distance` takes `time` (s): a change from v to
    /// it, the cruise, and a stop, both changes at the acceleration a.
    ///
    /// Its size c is a root, the smaller one if it will do, of
    ///
    ///     c^2 - p c + (D a + v^2 / 2) = 0,   p = a time + |v| towards the target, a time - |v| away from it.
    ///
    /// False, with `velocity` untouched, where `time` is below the minimum by more than 1e-6 s, where the
    /// equation has no real root, and where no root keeps within m and leaves time for both changes of
    /// velocity. These last tests have no tolerance: at the very minimum of time rounding may decide.
    ///
    /// The equation is that of a move that speeds up to its cruise. A move that starts towards the target and
    /// has to slow down to its cruise, or to turn back because its stop passes the target, covers another
    /// distance with the velocity that this gives.
    bool computeProfileVelocity(double distance, double time, double& velocity) const;

private:
    void updateScaledAcceleration() { m_ScaledAcceleration = m_Acceleration * m_SpeedFactor; }

    double m_Acceleration = 1.0;
    double m_MaxVelocity = 1.0;
    double m_InitialVelocity = 0.0;
    double m_SpeedFactor = 1.0;
    double m_ScaledAcceleration; ///< unset until a setter changes one of its factors
};
