#include "names/ShortForms.h"

#include <algorithm>
#include <array>

namespace tavi {
namespace {

struct ShortForm {
  std::string_view shortName;
  std::string_view fullName;
};

/// In alphabetical order of the short names. Short forms that are a full name's beginning in sound are not needed, nor
/// are those of several common names (Chris, Sandy, Terry).
constexpr std::array kShortForms{
    ShortForm{"ABBIE", "ABIGAIL"},     ShortForm{"ABBY", "ABIGAIL"},      ShortForm{"ALEX", "ALEXANDER"},
    ShortForm{"ALF", "ALFRED"},        ShortForm{"ALFIE", "ALFRED"},      ShortForm{"ANDY", "ANDREW"},
    ShortForm{"ART", "ARTHUR"},        ShortForm{"BARNEY", "BARNABY"},    ShortForm{"BEA", "BEATRICE"},
    ShortForm{"BECKY", "REBECCA"},     ShortForm{"BEN", "BENJAMIN"},      ShortForm{"BERNIE", "BERNARD"},
    ShortForm{"BERT", "ALBERT"},       ShortForm{"BESS", "ELIZABETH"},    ShortForm{"BETH", "ELIZABETH"},
    ShortForm{"BETSY", "ELIZABETH"},   ShortForm{"BETTY", "ELIZABETH"},   ShortForm{"BILL", "WILLIAM"},
    ShortForm{"BILLY", "WILLIAM"},     ShortForm{"BOB", "ROBERT"},        ShortForm{"BOBBY", "ROBERT"},
    ShortForm{"BRAD", "BRADLEY"},      ShortForm{"CATHY", "CATHERINE"},   ShortForm{"CHARLIE", "CHARLES"},
    ShortForm{"CHUCK", "CHARLES"},     ShortForm{"CINDY", "CYNTHIA"},     ShortForm{"CLIFF", "CLIFFORD"},
    ShortForm{"CONNIE", "CONSTANCE"},  ShortForm{"DAN", "DANIEL"},        ShortForm{"DANNY", "DANIEL"},
    ShortForm{"DAVE", "DAVID"},        ShortForm{"DEB", "DEBORAH"},       ShortForm{"DEBBIE", "DEBORAH"},
    ShortForm{"DEBBY", "DEBORAH"},     ShortForm{"DES", "DESMOND"},       ShortForm{"DI", "DIANE"},
    ShortForm{"DICK", "RICHARD"},      ShortForm{"DON", "DONALD"},        ShortForm{"DOT", "DOROTHY"},
    ShortForm{"DOTTIE", "DOROTHY"},    ShortForm{"DOUG", "DOUGLAS"},      ShortForm{"ED", "EDWARD"},
    ShortForm{"EDDIE", "EDWARD"},      ShortForm{"ELIZA", "ELIZABETH"},   ShortForm{"ELLIE", "ELEANOR"},
    ShortForm{"ERNIE", "ERNEST"},      ShortForm{"FLO", "FLORENCE"},      ShortForm{"FRED", "FREDERICK"},
    ShortForm{"FREDDIE", "FREDERICK"}, ShortForm{"GABY", "GABRIELLE"},    ShortForm{"GEOFF", "GEOFFREY"},
    ShortForm{"GERRY", "GERALD"},      ShortForm{"GREG", "GREGORY"},      ShortForm{"GUS", "ANGUS"},
    ShortForm{"GWEN", "GWENDOLINE"},   ShortForm{"HAL", "HENRY"},         ShortForm{"HARRY", "HENRY"},
    ShortForm{"HERB", "HERBERT"},      ShortForm{"HETTY", "ESTHER"},      ShortForm{"IZZY", "ISABEL"},
    ShortForm{"JACK", "JOHN"},         ShortForm{"JACKIE", "JACQUELINE"}, ShortForm{"JACKY", "JACQUELINE"},
    ShortForm{"JACQUI", "JACQUELINE"}, ShortForm{"JAKE", "JACOB"},        ShortForm{"JEFF", "GEOFFREY"},
    ShortForm{"JEN", "JENNIFER"},      ShortForm{"JENNY", "JENNIFER"},    ShortForm{"JERRY", "GERALD"},
    ShortForm{"JESS", "JESSICA"},      ShortForm{"JIM", "JAMES"},         ShortForm{"JIMMY", "JAMES"},
    ShortForm{"JOE", "JOSEPH"},        ShortForm{"JOEY", "JOSEPH"},       ShortForm{"JON", "JONATHAN"},
    ShortForm{"JOSH", "JOSHUA"},       ShortForm{"JUDY", "JUDITH"},       ShortForm{"KATE", "CATHERINE"},
    ShortForm{"KATHY", "CATHERINE"},   ShortForm{"KATIE", "CATHERINE"},   ShortForm{"KEN", "KENNETH"},
    ShortForm{"KENNY", "KENNETH"},     ShortForm{"LARRY", "LAURENCE"},    ShortForm{"LEN", "LEONARD"},
    ShortForm{"LENNY", "LEONARD"},     ShortForm{"LES", "LESLIE"},        ShortForm{"LIBBY", "ELIZABETH"},
    ShortForm{"LIZ", "ELIZABETH"},     ShortForm{"LIZZIE", "ELIZABETH"},  ShortForm{"MADDIE", "MADELEINE"},
    ShortForm{"MAGGIE", "MARGARET"},   ShortForm{"MANDY", "AMANDA"},      ShortForm{"MARGE", "MARJORIE"},
    ShortForm{"MATT", "MATTHEW"},      ShortForm{"MAX", "MAXWELL"},       ShortForm{"MEG", "MARGARET"},
    ShortForm{"MICK", "MICHAEL"},      ShortForm{"MICKY", "MICHAEL"},     ShortForm{"MIKE", "MICHAEL"},
    ShortForm{"MILLIE", "MILDRED"},    ShortForm{"NAT", "NATHANIEL"},     ShortForm{"NED", "EDWARD"},
    ShortForm{"NICK", "NICHOLAS"},     ShortForm{"NICKY", "NICOLA"},      ShortForm{"NIGE", "NIGEL"},
    ShortForm{"NORM", "NORMAN"},       ShortForm{"PADDY", "PATRICK"},     ShortForm{"PEGGY", "MARGARET"},
    ShortForm{"PENNY", "PENELOPE"},    ShortForm{"PETE", "PETER"},        ShortForm{"PHIL", "PHILIP"},
    ShortForm{"POLLY", "MARY"},        ShortForm{"RAY", "RAYMOND"},       ShortForm{"REG", "REGINALD"},
    ShortForm{"RICK", "RICHARD"},      ShortForm{"RICKY", "RICHARD"},     ShortForm{"ROB", "ROBERT"},
    ShortForm{"ROBBIE", "ROBERT"},     ShortForm{"ROD", "RODNEY"},        ShortForm{"RON", "RONALD"},
    ShortForm{"RONNIE", "RONALD"},     ShortForm{"SAL", "SARAH"},         ShortForm{"SALLY", "SARAH"},
    ShortForm{"SAM", "SAMUEL"},        ShortForm{"SAMMY", "SAMUEL"},      ShortForm{"SID", "SIDNEY"},
    ShortForm{"STAN", "STANLEY"},      ShortForm{"STEVE", "STEPHEN"},     ShortForm{"STU", "STUART"},
    ShortForm{"SUE", "SUSAN"},         ShortForm{"SUZIE", "SUSAN"},       ShortForm{"TED", "EDWARD"},
    ShortForm{"TEDDY", "EDWARD"},      ShortForm{"TESS", "THERESA"},      ShortForm{"TIM", "TIMOTHY"},
    ShortForm{"TINA", "CHRISTINA"},    ShortForm{"TOM", "THOMAS"},        ShortForm{"TOMMY", "THOMAS"},
    ShortForm{"TONY", "ANTHONY"},      ShortForm{"TRICIA", "PATRICIA"},   ShortForm{"TRISH", "PATRICIA"},
    ShortForm{"TRUDY", "GERTRUDE"},    ShortForm{"VAL", "VALERIE"},       ShortForm{"VERN", "VERNON"},
    ShortForm{"VIC", "VICTOR"},        ShortForm{"VICKY", "VICTORIA"},    ShortForm{"VIN", "VINCENT"},
    ShortForm{"WALLY", "WALTER"},      ShortForm{"WILL", "WILLIAM"},      ShortForm{"WINNIE", "WINIFRED"},
    ShortForm{"ZAC", "ZACHARY"}};

constexpr bool ComesBefore(const ShortForm& left, const ShortForm& right) {
  return left.shortName < right.shortName;
}
static_assert(std::is_sorted(kShortForms.begin(), kShortForms.end(), ComesBefore));

}  // namespace

std::string_view FullFormOf(std::string_view plainLetters) {
  const auto found = std::lower_bound(kShortForms.begin(), kShortForms.end(), ShortForm{plainLetters, {}}, ComesBefore);
  return found != kShortForms.end() && found->shortName == plainLetters ? found->fullName : std::string_view();
}

}  // namespace tavi
