#include "platform/linux/atspi/hit_test/point_queries.h"

namespace lumetry::atspi {

void PointQueries::askAgain(std::vector<Query> way) {
    for (Query& query : way) {
        if (query.question == Question::objectAtPoint) {
            query.first = at_.asked.x;
            query.second = at_.asked.y;
        }
    }
    ask(way);
}

void PointQueries::use(const Query& query) {
    ask(std::span(&query, 1));
    note(query);
}

Outcome PointQueries::outcome(const Query& query) {
    use(query);
    return cache_.outcome(query);
}

bool PointQueries::isAtPoint(const ObjectReference& object) {
    const auto extents = get<Question::extents>(object);
    return extents && extents->contains(at_.reported);
}

bool PointQueries::isShowing(const ObjectReference& object) {
    return hasState(get<Question::states>(object).value_or(0), habits_.shown);
}

void PointQueries::use(const ObjectReference& object, std::initializer_list<Question> questions) {
    std::vector<Query> queries;
    for (const Question question : questions) {
        queries.push_back({object, question});
    }
    ask(queries);
    for (const Query& query : queries) {
        note(query);
    }
}

void PointQueries::note(const Query& query) {
    if (noted_.insert(query).second) {
        way_.push_back(query);
    }
}

} // namespace lumetry::atspi
