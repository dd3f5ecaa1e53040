#pragma once

#include <vector>

/// Finds the minimum of a strictly convex quadratic function between bounds, given its minimum without them:
/// the dual active set method of Goldfarb and Idnani, "A numerically stable dual method for solving strictly
/// convex quadratic programs", Mathematical Programming 27, 1983, for bounds alone.
///
/// The function enters by its response P: what the minimum moves by when the gradient shrinks by one in one
/// unknown. Unknowns that are held at a bound, with multipliers lambda, take the minimum x* to
///     x = x* - sum over the held ones of lambda_k P_k
/// P may be singular, which is how linear equations enter: an unknown that these leave no freedom then can't
/// be held, and the method tells that the bounds contradict them. Nothing allocates after resize().
class NqBoundActiveSet {
public:
    /// Gives columns of P. Each is asked for once in a search.
    class Response {
    public:
        virtual ~Response() = default;
        virtual void column(unsigned k, std::vector<double>& column) = 0;
    };

    enum class Outcome {
        Solved,
        Contradiction, ///< no x in the bounds is within what P can reach from x*
        Capped         ///< not within maxSteps() steps
    };

    /// An unknown held at a bound.
    struct Hold {
        unsigned unknown = 0;
        bool isUpper = false;
        double multiplier =
            0.0; ///< positive at an upper bound, negative at a lower one, either where they meet
    };

    void resize(unsigned unknowns);

    /// Forgets the columns of P; to be called when P changes.
    void forgetResponse();

    /// @param x          in: the minimum without bounds; out: between them, exactly
    /// @param lower, upper  bounds, lower not above upper; may be infinite
    /// @param freedom    the size that P's diagonal has for an unknown that is free, an entry each
    /// @param leastShare what must be left of it for an unknown to be held
    Outcome solve(Response& response, const std::vector<double>& lower, const std::vector<double>& upper,
                  const std::vector<double>& freedom, double leastShare, std::vector<double>& x);

    /// After a search: which unknowns are held and, after a contradiction, the one that couldn't be.
    const std::vector<Hold>& holds() const { return m_Holds; }
    const Hold& contradicted() const { return m_Entering; }
    /// Holds taken up and let go in the last search.
    unsigned steps() const { return m_Steps; }
    /// Where a search ends that doesn't get on, which rounding alone could bring about; none was ever seen
    /// to.
    unsigned maxSteps() const { return 4 * m_Unknowns + 8; }

private:
    const std::vector<double>& columnOf(Response& response, unsigned k);
    bool pickViolated(const std::vector<double>& lower, const std::vector<double>& upper,
                      const std::vector<double>& x);
    void factor(Response& response);
    void direction(Response& response);
    void letGo(std::size_t hold);
    bool settle(Response& response, const std::vector<double>& lower, const std::vector<double>& upper,
                std::vector<double>& x);
    double boundOf(const Hold& hold, const std::vector<double>& lower,
                   const std::vector<double>& upper) const {
        return hold.isUpper ? upper[hold.unknown] : lower[hold.unknown];
    }

    unsigned m_Unknowns = 0;
    std::vector<std::vector<double>> m_Columns;
    std::vector<bool> m_HasColumn;
    std::vector<bool> m_IsHeld;
    std::vector<Hold> m_Holds;
    Hold m_Entering;
    std::vector<std::vector<double>> m_Factor; ///< of P among the held, Cholesky
    std::vector<double> m_Change;              ///< of the held multipliers for one of the entering one
    std::vector<double> m_Start;
    unsigned m_Steps = 0;
};
