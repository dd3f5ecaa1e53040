#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/text/NqTextConversion.h>
#include <nqControlCore/foundation/xml/NqXmlInputGuard.h>

#include <console_bridge/console.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <urdf_model/model.h>
#include <urdf_parser/urdf_parser.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kLargestText = std::size_t(16) << 20;
constexpr std::size_t kMostLinks = 4096;

/// One reading: the name under which messages speak of the description.
struct Source {
    std::string name;

    template <typename... Arguments>
    void print(unsigned printType, const std::string& format, const Arguments&... arguments) const {
        Nq::Print::instance().write(printType, "NqUrdfReader: %s: " + format + ".\n", name, arguments...);
    }
    template <typename... Arguments>
    bool refuse(const std::string& format, const Arguments&... arguments) const {
        print(Nq::PrintFailure, format, arguments...);
        return false;
    }
};

/// The parts of a description that make a kinematic model: the elements that may stand in each element.
const std::map<std::string_view, std::set<std::string_view>> kKeptChildren = {
    {"robot", {"link", "joint"}},
    {"link", {"inertial"}},
    {"inertial", {"origin", "mass", "inertia"}},
    {"joint", {"origin", "parent", "child", "axis", "limit", "mimic"}},
};

/// Their attributes that hold numbers.
const std::set<std::string_view> kNumbers = {"xyz", "rpy", "value", "ixx",   "ixy",    "ixz",     "iyy",
                                             "iyz", "izz", "lower", "upper", "effort", "velocity"};

std::string_view view(const xmlChar* text) {
    return text ? reinterpret_cast<const char*>(text) : "";
}

std::string attribute(xmlNode* element, const char* name) {
    xmlChar* value = xmlGetProp(element, reinterpret_cast<const xmlChar*>(name));
    const std::string result(view(value));
    xmlFree(value);
    return result;
}

bool isFiniteList(std::string_view text) {
    double number = 0.0;
    while (!(text = nqTrimmed(text)).empty()) {
        const std::size_t end = std::min(text.find_first_of(" \t\r\n"), text.size());
        if (!nqParseReal(text.substr(0, end), number) || !std::isfinite(number)) {
            return false;
        }
        text.remove_prefix(end);
    }
    return true;
}

/// The kinematic part of a description, checked so far that the URDF parser can be trusted with it.
class CleanDescription {
public:
    bool read(const Source& source, const std::string& text) {
        unsigned line = 0;
        if (const char* trouble = NqXmlInputGuard::troubleInDocument(text, line)) {
            return source.refuse("line %u: %s", line, trouble);
        }
        const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> parser(xmlNewParserCtxt(),
                                                                                  xmlFreeParserCtxt);
        const int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
        const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
            xmlCtxtReadMemory(parser.get(), text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                              options),
            xmlFreeDoc);
        if (!document) {
            const auto* error = xmlCtxtGetLastError(parser.get());
            return source.refuse(
                "line %d: %s", error ? error->line : 0,
                std::string(nqTrimmed(error && error->message ? error->message : "not XML")));
        }
        xmlNode* robot = xmlDocGetRootElement(document.get());
        if (view(robot->name) != "robot" || !keepKinematics(source, robot)) {
            return source.refuse("no robot to be read");
        }
        if (m_NumberOfPrefixed > 0) {
            source.print(
                Nq::PrintReadTrouble,
                "line %d: <%s> is passed by; elements with a prefix (%u in all) aren't known, those of "
                "xacro are to be expanded first",
                m_PrefixedLine, m_Prefixed, m_NumberOfPrefixed);
        }
        if (m_NumberOfLinks > kMostLinks) {
            return source.refuse("more than %u links", kMostLinks);
        }
        if (hasLoop()) {
            return source.refuse("some links form a loop");
        }
        xmlChar* cleaned = nullptr;
        int size = 0;
        xmlDocDumpMemoryEnc(document.get(), &cleaned, &size, "UTF-8");
        m_Text = view(cleaned);
        xmlFree(cleaned);
        return true;
    }

    const std::string& text() const { return m_Text; }

    /// The place of a joint in the text.
    std::size_t jointOrder(const std::string& name) const {
        const auto found = m_JointOrder.find(name);
        return found == m_JointOrder.end() ? m_JointOrder.size() : found->second;
    }

private:
    /// Drops what is no part of the kinematic model, and checks the rest.
    bool keepKinematics(const Source& source, xmlNode* element) {
        const auto kept = kKeptChildren.find(view(element->name));
        for (xmlNode *child = element->children, *next = nullptr; child; child = next) {
            next = child->next;
            const bool isPlain =
                child->type == XML_ELEMENT_NODE && kept != kKeptChildren.end() && !notePrefix(child);
            if (!isPlain || !kept->second.contains(view(child->name))) {
                xmlUnlinkNode(child);
                xmlFreeNode(child);
            } else if (!isSound(source, child) || !keepKinematics(source, child)) {
                return false;
            }
        }
        return true;
    }

    /// Whether an element's name has a prefix, declared or not; the first such element is remembered.
    bool notePrefix(const xmlNode* element) {
        std::string name(view(element->name));
        if (element->ns && element->ns->prefix) {
            name.insert(0, std::string(view(element->ns->prefix)) + ":");
        }
        if (name.find(':') == std::string::npos) {
            return false;
        }
        if (m_NumberOfPrefixed++ == 0) {
            m_Prefixed = name;
            m_PrefixedLine = xmlGetLineNo(element);
        }
        return true;
    }

    bool isSound(const Source& source, xmlNode* element) {
        const std::string_view name = view(element->name);
        for (const xmlAttr* entry = element->properties; entry; entry = entry->next) {
            const std::string attributeName(view(entry->name));
            if (kNumbers.contains(attributeName) &&
                !isFiniteList(attribute(element, attributeName.c_str()))) {
                return source.refuse("line %d: %s of <%s> isn't finite numbers%s", xmlGetLineNo(element),
                                     attributeName, std::string(name), placeOf(element));
            }
        }
        if (name == "link") {
            ++m_NumberOfLinks;
        } else if (name == "joint") {
            m_JointOrder.emplace(attribute(element, "name"), m_JointOrder.size());
            m_JointParent = parentOf(element);
        } else if (name == "child") {
            const std::string child = attribute(element, "link");
            if (!m_Parents.emplace(child, m_JointParent).second) {
                return source.refuse("line %d: link \"%s\" is the child of two joints", xmlGetLineNo(element),
                                     child);
            }
        }
        return true;
    }

    /// Says which joint an element stands in, if it does.
    static std::string placeOf(const xmlNode* element) {
        return view(element->parent->name) == "joint"
                   ? " in joint \"" + attribute(element->parent, "name") + '"'
                   : std::string();
    }

    /// The parent link that a joint names.
    static std::string parentOf(const xmlNode* joint) {
        for (xmlNode* child = joint->children; child; child = child->next) {
            if (child->type == XML_ELEMENT_NODE && view(child->name) == "parent") {
                return attribute(child, "link");
            }
        }
        return {};
    }

    /// Whether walking from some link to its parents never ends. The URDF parser would make objects that keep
    /// each other alive.
    bool hasLoop() const {
        std::set<std::string_view> ending;
        for (const auto& start : m_Parents) {
            std::set<std::string_view> path;
            auto walk = m_Parents.find(start.first);
            while (walk != m_Parents.end() && !ending.contains(walk->first)) {
                if (!path.insert(walk->first).second) {
                    return true;
                }
                walk = m_Parents.find(walk->second);
            }
            ending.merge(path);
        }
        return false;
    }

    std::string m_Text;
    std::size_t m_NumberOfLinks = 0;
    std::map<std::string, std::size_t> m_JointOrder;
    std::map<std::string, std::string> m_Parents; ///< by child link
    std::string m_JointParent;                    ///< of the joint in work
    std::string m_Prefixed;                       ///< the first element with a prefix
    long m_PrefixedLine = 0;
    unsigned m_NumberOfPrefixed = 0;
};

/// Takes the error messages of the URDF parser, which go to one handler of the process. There is one such
/// object, never destroyed, because console_bridge keeps a pointer to the handler before the present one.
class ParserMessages : public console_bridge::OutputHandler {
public:
    static ParserMessages& instance() {
        static auto* messages = new ParserMessages;
        return *messages;
    }

    /// Parses, with the first error in `error`; null where the parser gives nothing.
    urdf::ModelInterfaceSharedPtr parse(const std::string& text, std::string& error) {
        const std::lock_guard lock(m_Mutex);
        s_Error = &error;
        m_Previous = console_bridge::getOutputHandler();
        const console_bridge::LogLevel level = console_bridge::getLogLevel();
        console_bridge::useOutputHandler(this);
        console_bridge::setLogLevel(console_bridge::CONSOLE_BRIDGE_LOG_ERROR);
        urdf::ModelInterfaceSharedPtr model;
        try {
            model = urdf::parseURDF(text);
        } catch (const std::exception& exception) {
            error = exception.what();
        } catch (...) {
            error = "the URDF parser gave up";
        }
        console_bridge::setLogLevel(level);
        console_bridge::useOutputHandler(m_Previous);
        s_Error = nullptr;
        return model;
    }

    void log(const std::string& text, console_bridge::LogLevel level, const char* file, int line) override {
        if (!s_Error) {
            // From a thread that isn't reading a description.
            if (m_Previous && m_Previous != this) {
                m_Previous->log(text, level, file, line);
            }
        } else if (s_Error->empty()) {
            *s_Error = text;
        }
    }

private:
    std::mutex m_Mutex;
    console_bridge::OutputHandler* m_Previous = nullptr;
    static thread_local std::string* s_Error;
};

thread_local std::string* ParserMessages::s_Error = nullptr;

NqCoordinateSystemTransformation transformation(const urdf::Pose& pose) {
    NqOrientation orientation;
    orientation.setFromQuaternion(pose.rotation.w, pose.rotation.x, pose.rotation.y, pose.rotation.z);
    return {NqVector(pose.position.x, pose.position.y, pose.position.z), orientation};
}

/// The inertial data of a link about the origin of its frame.
NqRigidBodyMassProperties massProperties(const urdf::Link& link) {
    if (!link.inertial) {
        return {};
    }
    const urdf::Inertial& inertial = *link.inertial;
    return NqRigidBodyMassProperties::fromCentral(
        inertial.mass, transformation(inertial.origin),
        NqSecondMoment(inertial.ixx, inertial.ixy, inertial.ixz, inertial.iyy, inertial.iyz, inertial.izz));
}

/// False, with a message, for a joint that isn't known.
bool describe(const Source& source, const urdf::Joint& joint, NqJointDescription& description) {
    NqJointDescription::Type type = NqJointDescription::Fixed;
    switch (joint.type) {
    case urdf::Joint::REVOLUTE:
    case urdf::Joint::CONTINUOUS:
        type = NqJointDescription::Revolute;
        break;
    case urdf::Joint::PRISMATIC:
        type = NqJointDescription::Prismatic;
        break;
    case urdf::Joint::FIXED:
        break;
    default:
        return source.refuse("joint \"%s\" is floating or planar, which isn't supported", joint.name);
    }
    description = NqJointDescription(type, joint.name);
    if (joint.limits && type != NqJointDescription::Fixed) {
        if (joint.limits->velocity < 0.0 || joint.limits->effort < 0.0) {
            return source.refuse("joint \"%s\" has a negative limit", joint.name);
        }
        if (joint.type != urdf::Joint::CONTINUOUS) {
            if (joint.limits->lower > joint.limits->upper) {
                return source.refuse("joint \"%s\" has its lower limit above the upper one", joint.name);
            }
            description.setPositionLimits(joint.limits->lower, joint.limits->upper);
        }
        description.setRateLimit(joint.limits->velocity);
        description.setEffortLimit(joint.limits->effort);
    }
    if (joint.mimic && type != NqJointDescription::Fixed) {
        source.print(Nq::PrintReadTrouble, "joint \"%s\" mimics \"%s\" but is taken as a joint of its own",
                     joint.name, joint.mimic->joint_name);
    }
    return true;
}

bool build(const Source& source, const CleanDescription& description, const urdf::ModelInterface& model,
           NqIndividualManipulator& result) {
    for (const auto& [name, link] : model.links_) {
        if (link->inertial && link->inertial->mass < 0.0) {
            return source.refuse("link \"%s\" has a negative mass", name);
        }
    }
    const urdf::Link& root = *model.root_link_;
    result = NqIndividualManipulator(model.name_, root.name, massProperties(root));

    // Depth first; what is next stands last.
    std::vector<const urdf::Link*> pending{&root};
    while (!pending.empty()) {
        const urdf::Link& parent = *pending.back();
        pending.pop_back();
        if (&parent != &root) {
            const urdf::Joint& joint = *parent.parent_joint;
            NqJointDescription jointDescription;
            if (!describe(source, joint, jointDescription)) {
                return false;
            }
            if (!result.addLink(joint.parent_link_name, parent.name, jointDescription,
                                transformation(joint.parent_to_joint_origin_transform),
                                NqVector(joint.axis.x, joint.axis.y, joint.axis.z), massProperties(parent))) {
                return source.refuse("joint \"%s\" can't hold its link", joint.name);
            }
        }
        const auto firstChild = static_cast<std::ptrdiff_t>(pending.size());
        for (const auto& child : parent.child_links) {
            pending.push_back(child.get());
        }
        std::sort(pending.begin() + firstChild, pending.end(), [&](const urdf::Link* a, const urdf::Link* b) {
            return description.jointOrder(a->parent_joint->name) >
                   description.jointOrder(b->parent_joint->name);
        });
    }
    return true;
}

bool readText(const Source& source, const std::string& text, NqIndividualManipulator& manipulator) {
    if (text.size() > kLargestText) {
        return source.refuse("larger than %u bytes", kLargestText);
    }
    CleanDescription description;
    if (!description.read(source, text)) {
        return false;
    }
    std::string error;
    const urdf::ModelInterfaceSharedPtr model = ParserMessages::instance().parse(description.text(), error);
    error.erase(error.find_last_not_of(". \n") + 1);
    // An error may leave a model of which a part is missing.
    if (!model || !model->root_link_ || !error.empty()) {
        return source.refuse("%s", error.empty() ? std::string("no robot to be read") : error);
    }
    NqIndividualManipulator result;
    if (!build(source, description, *model, result)) {
        return false;
    }
    manipulator = result;
    return true;
}

} // namespace

bool NqUrdfReader::readFile(const std::string& fileName, NqIndividualManipulator& manipulator) {
    const Source source{fileName};
    std::error_code error;
    const bool isFile = std::filesystem::is_regular_file(fileName, error);
    const auto size = isFile ? std::filesystem::file_size(fileName, error) : 0;
    std::ifstream stream(fileName, std::ios::binary);
    if (!isFile || error || !stream) {
        return source.refuse("the file can't be read");
    }
    if (size > kLargestText) {
        return source.refuse("larger than %u bytes", kLargestText);
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    stream.read(text.data(), static_cast<std::streamsize>(size));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return readText(source, text, manipulator);
}

bool NqUrdfReader::readString(const std::string& text, NqIndividualManipulator& manipulator) {
    return readText(Source{"text"}, text, manipulator);
}
